#pragma once
// What a document window needs from the main window: the application state, and the
// shared procedures it calls when its content changes or a list gets the focus.
#include "shell/AppState.h"

class QPoint;
class QWidget;

namespace lists {
class ListView;
class ListEditHost;
} // namespace lists

namespace documents {

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
};

} // namespace documents
