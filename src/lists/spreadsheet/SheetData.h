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
// of an earlier row is still put in its place (by take(), at the cost of one sort).
//
// What the readers keep of a file (cells and shared strings) is counted as it comes, at what it
// costs in memory: a cell's place in its row (every place up to it, filled or not), its string
// and the characters. Once the count passes kMostKept bytes, no more cells are stored and the
// reader stops with fullMessage(), so no file makes an import take more memory than that,
// however far it unpacks or however far apart its cells lie.
class SheetBuilder {
public:
    static constexpr qint64 kMostKept = qint64(256) << 20;

    explicit SheetBuilder(int columns)
        : m_columns(columns) {}

    int columns() const { return m_columns; }
    // Counts a text of `length` characters that the reader keeps besides the cells (a shared
    // string); false once the count has passed kMostKept.
    bool keep(qsizetype length) { return count(kPlace + textCost(length)); }
    bool full() const { return m_kept > kMostKept; }
    static QString fullMessage();
    void setCell(int row, int col, const QString& text);
    // A run of `repeat` identical rows from `row` on, each with `cells` (an .ods file stores a
    // run once, and so does the builder).
    void addRows(int row, int repeat, const QStringList& cells);
    SheetData take();

    // What one place of a row costs: the string object in its list.
    static constexpr qint64 kPlace = sizeof(QString);

private:
    // What a kept text costs: its characters, its header and what the allocator adds.
    static constexpr qint64 textCost(qsizetype length) { return 32 + 2 * qint64(length); }
    bool count(qint64 bytes) {
        m_kept += bytes;
        return !full();
    }
    SheetRow& rowAt(int row);
    int m_columns;
    qint64 m_kept = 0;
    bool m_unsorted = false; // a row came after a later one
    SheetData m_data;
};

} // namespace lists::sheet
