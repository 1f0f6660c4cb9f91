#pragma once
// The window side of list editing for one list view: the in-place edit box TXTEDIT laid over a
// cell, the keys that start, move and end an edit, sorting on a header click, and dragging rows
// from one list to another. The rules themselves are the procedures of ListEditing.
//
// A window attaches one ListEditor to each of its lists and answers the ListEditHost questions
// (see README.md in this folder).
#include "lists/ListEditing.h"
#include "lists/ui/ListView.h"

#include <QObject>
#include <QPixmap>
#include <QPoint>
#include <QPointer>
#include <QStringList>

#include <functional>

class QFrame;
class QKeyEvent;
class QLineEdit;
class QMimeData;

namespace lists {

class ListView;

// What a list's editor needs from the window that shows the list.
class ListEditHost {
public:
    virtual ~ListEditHost() = default;
    // The program mode, the list's index in the detailed data window (-1 elsewhere) and its
    // restricted-edit flag.
    virtual EditContext editContext(ListView* view) = 0;
    // The list's content changed by editing: mark the project (Touch) or the base list window
    // (FormTouch) changed.
    virtual void listEdited(ListView* view) = 0;
    // The unit price column chosen in the unit price window, and the program mode, for rows
    // dropped from `source` onto `target`.
    virtual TransferOptions transferOptions(ListView* target, ListView* source) = 0;
    // Rows were dropped onto `target`: mark it changed and, for a project list with the setting
    // "AutoFormat" on, format it from row 1.
    virtual void transferDone(ListView* target, const TransferResult& result) = 0;
    // Files from the file manager dropped on the list on `row` (0: below the rows): the
    // window opens or imports them.
    virtual void filesDropped(ListView* view, const QStringList& files, int row) {}
};

class ListEditor : public QObject {
    Q_OBJECT
public:
    // Attaches to the view (the editor becomes its child). A null host edits as the client
    // would, in a list of no window, and is told nothing.
    ListEditor(ListView* view, ListEditHost* host);
    ~ListEditor() override;

    // The editor attached to a view, if any.
    static ListEditor* of(const ListView* view);

    ListView* view() const { return m_view; }
    // The edit box TXTEDIT: a child of the view's viewport, hidden except while editing.
    QLineEdit* editBox() const;
    bool isEditing() const;
    int editRow() const { return m_editRow; }
    int editColumn() const { return m_editCol; }
    void setEditCell(int row, int column) {
        m_editRow = row;
        m_editCol = column;
    }
    bool committed() const { return m_committed; }

    // Starts editing: 0 the cell under the last mouse position in the edit row (double-click),
    // 1 the edit cell showing its text, 2 the edit cell keeping what the box holds (typing).
    // Returns whether the box is shown.
    bool EditListView(int startMode);
    // The column under the last mouse-down position; 0 when none.
    int GetListViewCol() const;
    // A key typed on the list. Returns whether it started (or tried to start) an edit; other
    // keys are left to the view.
    bool EditListViewKeyCode(QKeyEvent* event);
    // A key in the edit box: Esc, Enter, Shift+Enter, Alt+Enter. Returns whether it was one.
    bool EditKeyCode(int key, Qt::KeyboardModifiers modifiers);
    // Moves the edit row up (-1) or down (+1) and gives the focus back to the list.
    void NextLine(int direction);
    // Stores the box's text into the edit cell while the box is shown.
    bool PutToListView();
    // Ends an edit as losing the focus does: stores unless a key already did, hides the box.
    void closeEditor();
    // A click on a column header.
    bool SortItems(int column);

    // The edit menu's list operations with this list's context; each reports a change to the
    // host. Row actions 1, 2, 3; clipboard operations 0 cut, 1 copy, 3 delete.
    bool rowEdit(int rowAction);
    bool cutCopyDelete(int operation);
    bool paste();

    // ---- drag and drop
    // Whether a pointer moved from `down` to `now` (pixels) has gone far enough to start a drag:
    // 1000 twips squared, at 15 twips a pixel.
    static bool dragThresholdReached(QPoint down, QPoint now);
    // Mouse move over the list: with the left button held far enough from where it went down,
    // drags the list's selected rows. Shift held at that moment places them at the drop row.
    void StartListViewDrag(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, QPoint pos);
    // The pointer is over this list during a drag from `source`: whether a drop is allowed;
    // if so the row under the pointer is marked as the drop row and the selection cleared.
    bool CheckListViewDrop(ListView* source, QPoint pos);
    // A drop from `source`: appends (no drop row), places at the drop row (with `shift`) or
    // sorts the rows in (without); an empty list takes them at the top.
    bool EditListViewDragDrop(ListView* source, QPoint pos, bool shift);
    // The row marked as the drop row; 0 for none.
    int dropRow() const { return m_dropRow; }

    // What a drag carries: only the dragged list's identity and the Shift state, under a type
    // of its own, so that text boxes refuse it.
    static QString mimeType();
    QMimeData* dragData(bool shift) const;
    // The list a drag came from (null when it is gone or is not one of ours).
    static ListView* dragSource(const QMimeData* data, bool* shift = nullptr);

    // The drag pictures "Drag", "Drop" and "NoDrop".
    enum class DragPicture { Drag, Drop, NoDrop };
    static QPixmap dragPicture(DragPicture which);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ListModel* list() const;
    EditContext context() const;
    void edited();
    // Runs an edit menu operation on the list after closing an open edit; reports a change.
    // The operation is one step named `stepText` of the list's history.
    bool changeList(const QString& stepText,
                    const std::function<bool(ListModel&, const EditContext&)>& operation);
    void showDropRow(int row);
    int rowAt(QPoint pos) const;

    QPointer<ListView> m_view;
    ListEditHost* m_host = nullptr;
    QPointer<QLineEdit> m_box;
    QPointer<QFrame> m_dropMark;
    quint64 m_id = 0;
    int m_editRow = 0;
    int m_editCol = 0;
    bool m_committed = false;
    bool m_storing = false;
    int m_dropRow = 0;
    QPoint m_pressPos;
    bool m_pressed = false;
    bool m_dragging = false;
};

} // namespace lists
