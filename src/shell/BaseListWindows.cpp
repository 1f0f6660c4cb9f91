// The two base list windows as the main window sees them.
#include "shell/MDIForm1.h"
#include "shell/ShellActions.h"

namespace shell {

void loadBaseListWindow(MDIForm1&, int) {}
void showBaseListWindow(MDIForm1&, int) {}
bool closeBaseListWindow(MDIForm1&, int) { return true; }
void restoreBaseListWindow(MDIForm1&, int, bool) {}
void enableUnitPriceAdding(MDIForm1&, bool) {}

} // namespace shell
