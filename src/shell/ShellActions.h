#pragma once
// Procedures of the main window that live in their own files, by topic.
#include <QIcon>
#include <QWidget>
#include <QStyle>
#include <QWidget>
#include <array>
#include <memory>

namespace lists {
class EditHistory;
class ListModel;
class ListView;
} // namespace lists

namespace documents {
class ProjectWindow;
}

namespace platform {
class Picture;
}

namespace print::ui {
class PrintHost;
}

namespace shell {

class MDIForm1;

// The nearest widget of type T that holds `w` (or `w` itself); null when none does.
template <typename T> T* ancestor(QWidget* w) {
    for (; w; w = w->parentWidget())
        if (auto* t = qobject_cast<T*>(w)) return t;
    return nullptr;
}
struct AppState;
struct ProjectWindows;

// The print selection dialog on the active project (PrintActions.cpp).
void showPrintDialog(MDIForm1& main);
// What the print windows ask of the main window, for windows that print on their own.
std::unique_ptr<print::ui::PrintHost> makePrintHost(MDIForm1& main);

// "&Vertaa projektia...": asks for another version of the active project and opens the
// comparison window on the two (CompareActions.cpp).
void showCompareWindow(MDIForm1& main);

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

// Undo and redo (UndoActions.cpp): the Edit menu's items and the toolbar buttons, their texts
// and states for what has the focus, and the undo or redo itself: within a text box that can,
// else a step of the active project's history. A project's four windows share one history,
// attached when the project is made.
void createUndoActions(MDIForm1& main);
void updateUndoActions(MDIForm1& main);
void undoOrRedo(MDIForm1& main, bool redo);
lists::EditHistory* activeHistory(MDIForm1& main);
void attachProjectHistory(MDIForm1& main, const ProjectWindows& windows);
// The program mode changed: new steps are made in it.
void followProgramMode(MDIForm1& main);
// The most steps a history keeps ("UndoLimit"); a history takes it when it is next empty.
void setUndoLimit(MDIForm1& main, int limit);

// Project windows (ProjectActions.cpp).
void UpdateTextDocuments(MDIForm1& main, int oldIndex);
void focusTextDocument(MDIForm1& main);
// Copies the municipality and the bridge type of the basic data into the charge chamber card.
void copyMunicipality(MDIForm1& main, const ProjectWindows& windows);
// Compares two file paths as the same file: canonical paths, letter case ignored.
bool sameFile(const QString& a, const QString& b);

// Start-up resources (Resources.cpp).
QIcon toolbarIcon(const QString& key, QStyle::StandardPixmap fallback);
// The pictures of the tool windows' buttons, by key.
QIcon shellToolIcon(const QString& key);
void LoadLogo(MDIForm1& main);
void readOfficeRows(AppState& state);

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

class QTextEdit;

namespace shell {
// The tool windows (ToolWindows.cpp). The row editor for a list; the text editor in an
// EditorMode; the heading index that the active control calls for (kind as ShowIndexMode);
// the heading index of a base list window.
void ShowListViewEditor(MDIForm1& main, lists::ListView* view);
void ShowTextEditor(MDIForm1& main, int mode);
void ShowIndex(MDIForm1& main, int kind);
void ShowBaseListIndex(MDIForm1& main, lists::BaseListWindow* window);
// The detailed data window's shown document when it has the focus in the active window.
QTextEdit* activeRichTextBox(MDIForm1& main);

// "Lisää" of a base list window: its selected rows into the active detailed data window
// (EditActions.cpp).
void exportFromBaseList(MDIForm1& main, lists::BaseListWindow* window, int mode);
} // namespace shell
