#pragma once
// The cell texts of one worksheet as the readers hand them over: only the rows that hold cells,
// in ascending order, each with its cells from column 0 on.
#include <QStringList>
#include <vector>

namespace lists::sheet {

// The largest sheet a spreadsheet program opens: positions beyond it do not exist.
constexpr int kMaxSheetRows = 1048576;
constexpr int kMaxSheetColumns = 16384;

struct SheetRow {
    int index = 0;  // sheet row, from 0
    int repeat = 1; // this many rows from `index` on hold the same cells
    QStringList cells;
};

struct SheetData {
    std::vector<SheetRow> rows;
    // Whether a non-empty cell lay beyond the columns that were asked for.
    bool cellsBeyondColumns = false;
};

// Collects cells in the order a file gives them. Cells at or beyond `columns` are left out (a
// list keeps its own columns); rows come in ascending order in every known writer, and a cell
// of an earlier row is still put in its place.
class SheetBuilder {
public:
    explicit SheetBuilder(int columns)
        : m_columns(columns) {}

    int columns() const { return m_columns; }
    void setCell(int row, int col, const QString& text);
    // A run of `repeat` identical rows from `row` on, each with `cells` (an .ods file stores a
    // run once).
    void addRows(int row, int repeat, const QStringList& cells);
    SheetData take() { return std::move(m_data); }

private:
    SheetRow& rowAt(int row);
    int m_columns;
    SheetData m_data;
};

} // namespace lists::sheet
