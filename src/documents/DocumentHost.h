#pragma once
// What a document window needs from the main window: the application state, and the
// shared procedures it calls when its content changes or a list gets the focus.
#include "shell/AppState.h"

#include <QIcon>
#include <QStringList>

class QPoint;
class QWidget;

namespace lists {
class ListView;
class ListEditHost;
} // namespace lists

namespace documents {

class Form1;
class Form2;

class DocumentHost {
public:
    virtual ~DocumentHost() = default;
    virtual shell::AppState& appState() = 0;
    // A content change in `window`: marks its project changed unless a file is being read.
    virtual void contentChanged(QWidget* window) = 0;
    // A list got the focus or its current row moved: the status bar shows where it stands.
    virtual void listFocused(lists::ListView* view) = 0;
    // Who answers the list editors' questions; null edits as the client would and tells nobody.
    virtual lists::ListEditHost* listEditHost() { return nullptr; }
    // The right-button menu over a list (context 0) or a rich-text box (context 1).
    virtual void showContextMenu(int context, const QPoint& globalPos) {}
    // "Las&ke tunnusluvut" of a characteristics card: computes its grey fields from the
    // project's basic data and quantity list.
    virtual void computeCardFigures(QWidget* card) {}

    // The basic data and the detailed data window of the project that `window` (a project
    // window or one of its lists) belongs to; for any other window those of the active project.
    // Null when there is none.
    virtual Form1* basicDataWindowOf(QWidget* window) { return nullptr; }
    virtual Form2* detailedDataWindowOf(QWidget* window) { return nullptr; }
    // Opens a file with its associated program, telling the user when that fails.
    virtual void openFile(const QString& target) {}
    // The user's guide at a topic, over `from` (a modal window keeps it usable).
    virtual void showHelp(int context, QWidget* from) {}
    // The window-position table: a tool window takes its slot's position when it opens and
    // leaves its own there when it closes.
    virtual void restoreWindowPosition(int slot, QWidget* window) {}
    virtual void storeWindowPosition(int slot, QWidget* window) {}
    // Brings a project window to the front (an undo showing what it changed).
    virtual void bringForward(QWidget* window) { Q_UNUSED(window); }
    // The picture of a toolbar button, by its key ("Cut", "Copy", "Find", ...).
    virtual QIcon toolIcon(const QString& key) { return {}; }
    // Files dropped on the window, on the control `at` (a picture slot, a button, or nothing in
    // particular); the host opens or places them.
    virtual void filesDropped(QWidget* window, QWidget* at, const QStringList& files) {}
};

} // namespace documents
