#pragma once
// The printer picture of the main window's and the preview's "Print" buttons.
#include <QIcon>

namespace print::ui {

QIcon printerIcon();

} // namespace print::ui
