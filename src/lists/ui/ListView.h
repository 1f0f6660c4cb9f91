#pragma once
// The list view widget: a QTreeView over a ListModel. The row-number column is hidden, rows
// are selected whole and several at a time, and the selection lives in the model so that
// the list procedures see it; the view mirrors it both ways.
#include "lists/ListModel.h"

#include <QPointer>
#include <QTreeView>

namespace lists {

class ListView : public QTreeView {
    Q_OBJECT
public:
    explicit ListView(QWidget* parent = nullptr);
    ~ListView() override;

    ListModel* list() const { return m_list.data(); }
    void setList(ListModel* list);
    // The control index of the list in its window (ListView1[index]).
    int index() const { return m_index; }
    void setIndex(int index) { m_index = index; }

    // The read-only look of a list made read-only by the program mode.
    void setReadOnlyLook(bool readOnly);
    // Last mouse-down position, in the view's viewport.
    QPoint lastMousePos() const { return m_lastMouse; }
    // The 1-based column under an x position of the viewport; 0 when none.
    int columnAtX(int x) const;
    // The rectangle of a cell (1-based) in the viewport.
    QRect cellRect(int row, int col) const;
    void applyColumnWidths();

signals:
    void headerClicked(int column); // 1-based
    void rowDoubleClicked(int row);
    void keyTyped(QKeyEvent* event);
    void mousePressed(Qt::MouseButton button, Qt::KeyboardModifiers modifiers, QPoint pos);
    void mouseMoved(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers, QPoint pos);
    void focusEntered();
    // The current row moved: through the view (clicks, arrow keys) or with its row (a sort).
    void currentRowMoved(int row);
    void contextMenuWanted(QPoint globalPos);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;

private:
    void syncFromModel();
    void syncToModel();
    void onScrollRequest(int row);

    // The model belongs to the window and may go before the view does.
    QPointer<ListModel> m_list;
    int m_index = 0;
    bool m_syncing = false;
    QPoint m_lastMouse;
};

} // namespace lists
