#pragma once
// Procedures of the main window that live in their own files, by topic.
#include <QIcon>
#include <QStyle>
#include <array>

namespace lists {
class ListModel;
class ListView;
} // namespace lists

namespace documents {
class ProjectWindow;
}

namespace platform {
class Picture;
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
void TamrikHelp(MDIForm1& main, int context);
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
// The program's own icon: an arch bridge.
QIcon applicationIcon();
void LoadLogo(MDIForm1& main);
void readOfficeRows(AppState& state);
// Items whose windows are not part of this build stay disabled.
void applyAvailability(MDIForm1& main);

// The e-mail dialog and the image viewer (PeripheralWindows.cpp).
void showMailDialog(MDIForm1& main);
// Opens the image viewer modally on a picture: slot 1 the print logo, 2..7 the pictures of
// `project` (its folder and name). The viewer takes its place from slot 13 of the window table.
void showImageViewer(MDIForm1& main, int slot, const QString& project, QWidget* parent);
// Gives a changed picture back to its owner: the logo (with its file, when it came from one)
// or the basic data window's picture slot - 2 of the project.
void GiveBackPicture(MDIForm1& main, int slot, const QString& project, const platform::Picture& picture,
                     const QString& file);
// The cards' picture buttons open the viewer on their project's pictures.
void connectPictureButtons(MDIForm1& main, documents::ProjectWindow* window);

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
