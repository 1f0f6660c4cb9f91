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
//
// What the readers keep of a file (cells and shared strings) is counted as it comes: once it
// passes kMostKept bytes, no more cells are stored and the reader stops with fullMessage(), so
// no file makes an import take more memory than that, however far it unpacks.
class SheetBuilder {
public:
    static constexpr qint64 kMostKept = qint64(256) << 20;

    explicit SheetBuilder(int columns)
        : m_columns(columns) {}

    int columns() const { return m_columns; }
    // Counts a text of `length` characters that the reader keeps besides the cells (a shared
    // string); false once the count has passed kMostKept.
    bool keep(qsizetype length) {
        m_kept += kTextOverhead + 2 * qint64(length);
        return !full();
    }
    bool full() const { return m_kept > kMostKept; }
    static QString fullMessage();
    void setCell(int row, int col, const QString& text);
    // A run of `repeat` identical rows from `row` on, each with `cells` (an .ods file stores a
    // run once).
    void addRows(int row, int repeat, const QStringList& cells);
    SheetData take() { return std::move(m_data); }

private:
    // What a kept text costs beyond its characters: its string and its place in a row or table.
    static constexpr qint64 kTextOverhead = 32;
    SheetRow& rowAt(int row);
    int m_columns;
    qint64 m_kept = 0;
    SheetData m_data;
};

} // namespace lists::sheet
