#pragma once
// What a list step changed, recorded as the list changes, so that the step can be undone and
// redone exactly: each change keeps only the rows and cells it touched. The step itself, which
// opens a journal and hands it to the list's history, is ListStep.
#include "lists/ListModel.h"

#include <QString>
#include <variant>
#include <vector>

namespace lists {

class EditHistory;

namespace change {

// One cell.
struct Cell {
    int row = 0;
    int column = 0;
    QString before;
    QString after;
};

// Cells of one column rewritten at once. Row numbers ("00012") that moved by the same amount
// in consecutive rows are kept as a run, so renumbering a long list costs a few runs; any other
// text is kept as it was and as it became.
struct Column {
    struct Text {
        int row;
        QString before;
        QString after;
    };
    struct Shift {
        int first;
        int count;
        long long by;
    };
    int column = 0;
    std::vector<Text> texts;
    std::vector<Shift> shifts;
    bool empty() const { return texts.empty() && shifts.empty(); }
    // Records one changed cell; rows come in ascending order.
    void add(int row, QStringView before, QStringView after);
};

// Rows taken out (at their positions before, ascending) and put in (at their positions after,
// ascending) in one pass. Undoing swaps the two.
struct Splice {
    std::vector<int> removedAt;
    std::vector<Row> removed;
    std::vector<int> insertedAt;
    std::vector<Row> inserted;
};

// Rows put into another order: order[i] is the position before of the row that went to i + 1.
struct Reorder {
    std::vector<int> order;
};

// The whole list replaced (a spreadsheet import): columns only when they changed.
struct Replace {
    bool columnsChanged = false;
    std::vector<lists::Column> columnsBefore, columnsAfter;
    std::vector<Row> rowsBefore, rowsAfter;
};

} // namespace change

using ListChange =
    std::variant<change::Cell, change::Column, change::Splice, change::Reorder, change::Replace>;

// The changes of one step, in the order they were made.
class ListJournal {
public:
    bool empty() const { return m_changes.empty(); }
    const std::vector<ListChange>& changes() const { return m_changes; }
    void add(ListChange change) { m_changes.push_back(std::move(change)); }
    // Whether the step changed a requirement the contractor may not change (a row whose
    // governing row has type 1 or 2), noted while the list was in the state of each change.
    bool touchesProtected() const { return m_protected; }
    // Notes whether rows first..last of the list as it is now belong to such a requirement, or
    // whether a cell that held `before` in `column` did.
    void checkRows(const ListModel& list, int first, int last);
    void checkCell(const ListModel& list, int row, int column, const QString& before);

    // What the step keeps: whole rows, single cell texts, and runs of renumbered rows.
    struct Held {
        std::size_t rows = 0;
        std::size_t cells = 0;
        std::size_t runs = 0;
        std::size_t reordered = 0;
    };
    Held held() const;

    // Applies the changes backward (undo, last change first) or forward (redo). The list must
    // be in the state the step left (undo) or found (redo).
    void apply(ListModel& list, bool forward) const;
    // The rows to show selected afterwards, ascending: what the step changed, in the state the
    // list is in after applying it in that direction. A step that put every row in another
    // order or replaced them all shows the current row it found (undo) or left (redo).
    std::vector<int> changedRows(const ListModel& list, bool forward) const;
    // The list's current row when the step began and when it ended.
    void noteCurrentRow(int row, bool after) { (after ? m_currentAfter : m_currentBefore) = row; }

private:
    std::vector<ListChange> m_changes;
    bool m_protected = false;
    int m_currentBefore = 0;
    int m_currentAfter = 0;
};

} // namespace lists
