#pragma once
// The marks of the project check beside the cells of the detailed data window's two lists: a
// cell whose text the calculations read other than it looks gets a coloured background and a
// corner mark (red for an error, amber for a remark), with the explanation as its tooltip.
// Only painted rows are checked, each once until it changes, so scrolling costs nothing.
#include "calc/ProjectCheck.h"

#include <QPointer>
#include <QStyledItemDelegate>
#include <unordered_map>
#include <vector>

namespace lists {
class ListModel;
class ListView;
} // namespace lists

namespace documents {

class CheckMarks : public QStyledItemDelegate {
    Q_OBJECT
public:
    // Marks the cells of `view`, which shows a list of `place`; the delegate belongs to the view.
    CheckMarks(calc::CheckPlace place, lists::ListView* view);

    // The marks of a delegate set on a view; null when the view has none.
    static CheckMarks* of(const lists::ListView* view);

    // The findings of a cell (1-based row and column); empty for an unmarked cell.
    std::vector<calc::Finding> findingsAt(int row, int column) const;
    // Frames a cell the project check went to, until the current row moves.
    void showCell(int row, int column);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    const std::vector<calc::Finding>& rowFindings(int row) const;
    const calc::Finding* worstAt(int row, int column) const;
    void forget();
    void forgetRows(int first, int last);

    calc::CheckPlace m_place;
    lists::ListView* m_view;
    QPointer<lists::ListModel> m_list;
    // The findings of the rows painted since the list last changed, by row.
    mutable std::unordered_map<int, std::vector<calc::Finding>> m_rows;
    int m_shownRow = 0;
    int m_shownColumn = 0;
};

} // namespace documents
