#pragma once
// Procedures of the main window that live in their own files, by topic.
#include <QIcon>
#include <QWidget>
#include <QStyle>
#include <array>

namespace lists {
class ListModel;
class ListView;
} // namespace lists

namespace documents {
class ProjectWindow;
}

namespace shell {

class MDIForm1;
struct AppState;
struct ProjectWindows;

// Settings dialog (Form8.cpp).
void showSettingsDialog(MDIForm1& main);

// Help menu, About box and the separate help files (HelpMenu.cpp).
void loadHelpFileMenu(MDIForm1& main);
void openHelpFile(MDIForm1& main, int index);
// The user's guide at a topic. From a modal dialog, pass the dialog: the help window then
// belongs to it and stays usable while the dialog is open.
void TamrikHelp(MDIForm1& main, int context, QWidget* dialog = nullptr);
void showAbout(MDIForm1& main);

// The base list windows: slot 6 the unit price list, 7 the requirement base list
// (BaseListWindows.cpp). Closing returns true when the window agreed to close.
void loadBaseListWindow(MDIForm1& main, int slot);
void showBaseListWindow(MDIForm1& main, int slot);
bool closeBaseListWindow(MDIForm1& main, int slot);
void restoreBaseListWindow(MDIForm1& main, int slot, bool wasClosed);

// The edit menu's actions on the active control, and on a given list (EditActions.cpp).
void editMenuAction(MDIForm1& main, int index);
void listMenuAction(MDIForm1& main, lists::ListView* view, int index);

// Project windows (ProjectActions.cpp).
void UpdateTextDocuments(MDIForm1& main, int oldIndex);
void focusTextDocument(MDIForm1& main);
// Copies the municipality and the bridge type of the basic data into the charge chamber card.
void copyMunicipality(MDIForm1& main, const ProjectWindows& windows);
// Compares two file paths as the same file: canonical paths, letter case ignored.
bool sameFile(const QString& a, const QString& b);

// Start-up resources (Resources.cpp).
QIcon toolbarIcon(const QString& key, QStyle::StandardPixmap fallback);
void LoadLogo(MDIForm1& main);
void readOfficeRows(AppState& state);
// Items whose windows are not part of this build stay disabled.
void applyAvailability(MDIForm1& main);
void disablePictureButtons(documents::ProjectWindow* window);

} // namespace shell

namespace shell {
// The unit price window's "Lisää" button and menu items (BaseListWindows.cpp).
void enableUnitPriceAdding(MDIForm1& main, bool enabled);
} // namespace shell

namespace lists {
class BaseListWindow;
}

namespace shell {
// "Lisää" of a base list window: its selected rows into the active detailed data window
// (EditActions.cpp).
void exportFromBaseList(MDIForm1& main, lists::BaseListWindow* window, int mode);
} // namespace shell
