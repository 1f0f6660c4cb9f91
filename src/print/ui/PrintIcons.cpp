#include "print/ui/PrintIcons.h"

#include "platform/ui/Icons.h"

namespace print::ui {

QIcon printerIcon() {
    return platform::toolIcon(QStringLiteral("Print"));
}

} // namespace print::ui
