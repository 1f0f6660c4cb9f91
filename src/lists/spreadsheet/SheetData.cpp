#include "lists/spreadsheet/SheetData.h"

#include <algorithm>

namespace lists::sheet {

namespace {
// What a stored row costs besides its places: its entry and its list's header.
constexpr qint64 kRowCost = qint64(sizeof(SheetRow)) + 32;

// Splits the last entry, a run that holds `row`, so that the row stands alone; returns the
// row's entry.
SheetRow& splitLast(std::vector<SheetRow>& rows, int row) {
    const SheetRow whole = rows.back();
    rows.pop_back();
    if (row > whole.index) rows.push_back({whole.index, row - whole.index, whole.cells});
    rows.push_back({row, 1, whole.cells});
    const std::size_t at = rows.size() - 1;
    if (row + 1 < whole.index + whole.repeat)
        rows.push_back({row + 1, whole.index + whole.repeat - row - 1, whole.cells});
    return rows[at];
}

} // namespace

SheetRow& SheetBuilder::rowAt(int row) {
    auto& rows = m_data.rows;
    if (!rows.empty()) {
        const SheetRow& last = rows.back();
        if (last.index <= row && row < last.index + last.repeat)
            return last.repeat == 1 ? rows.back() : splitLast(rows, row);
        // An earlier row: it is added as it comes and take() puts it in its place, so rows in
        // reverse order cost no more than rows in order.
        if (row < last.index) m_unsorted = true;
    }
    rows.push_back({row, 1, {}});
    return rows.back();
}

SheetData SheetBuilder::take() {
    auto& rows = m_data.rows;
    if (m_unsorted) {
        std::stable_sort(rows.begin(), rows.end(),
                         [](const SheetRow& a, const SheetRow& b) { return a.index < b.index; });
        // A row given more than once is one row; its later cells win, as they did in the file.
        std::vector<SheetRow> merged;
        merged.reserve(rows.size());
        for (SheetRow& r : rows) {
            if (merged.empty() || merged.back().index + merged.back().repeat <= r.index) {
                merged.push_back(std::move(r));
                continue;
            }
            // Runs come in order, so what overlaps is a single row.
            SheetRow& into = merged.back().repeat == 1 ? merged.back() : splitLast(merged, r.index);
            if (into.cells.size() < r.cells.size()) into.cells.resize(r.cells.size());
            for (qsizetype c = 0; c < r.cells.size(); ++c)
                if (!r.cells[c].isEmpty()) into.cells[c] = r.cells[c];
        }
        rows = std::move(merged);
        m_unsorted = false;
    }
    std::erase_if(rows, [](const SheetRow& r) { return r.cells.isEmpty(); });
    return std::move(m_data);
}

QString SheetBuilder::fullMessage() {
    return QStringLiteral("taulukossa on enemmän tekstiä kuin ohjelma pystyy tuomaan (yli %1 Mt)")
        .arg(kMostKept >> 20);
}

void SheetBuilder::setCell(int row, int col, const QString& text) {
    if (text.isEmpty() || row < 0 || row >= kMaxSheetRows || col < 0) return;
    if (col >= m_columns) {
        m_data.cellsBeyondColumns = true;
        return;
    }
    if (full()) return;
    SheetRow& r = rowAt(row);
    // A new row, the places up to the cell and the text. A cell that does not fit is not
    // stored; take() drops a row that stayed empty.
    const qint64 places = std::max<qint64>(0, col + 1 - r.cells.size());
    const qint64 newRow = r.cells.isEmpty() ? kRowCost : 0;
    if (!count(newRow + places * kPlace + textCost(text.size()))) return;
    QStringList& cells = r.cells;
    if (cells.size() <= col) cells.resize(col + 1);
    cells[col] = text;
}

void SheetBuilder::addRows(int row, int repeat, const QStringList& cells) {
    if (row < 0 || row >= kMaxSheetRows || repeat < 1) return;
    repeat = std::min(repeat, kMaxSheetRows - row);
    QStringList kept = cells;
    if (kept.size() > m_columns) {
        for (qsizetype c = m_columns; c < kept.size(); ++c)
            if (!kept[c].isEmpty()) m_data.cellsBeyondColumns = true;
        kept.resize(m_columns);
    }
    while (!kept.isEmpty() && kept.back().isEmpty())
        kept.removeLast();
    if (kept.isEmpty()) return;
    if (repeat == 1) {
        for (qsizetype c = 0; c < kept.size(); ++c)
            setCell(row, static_cast<int>(c), kept[c]);
        return;
    }
    auto& rows = m_data.rows;
    if (rows.empty() || rows.back().index + rows.back().repeat <= row) {
        // A run is stored once: its row, its places and each text.
        qint64 cost = kRowCost + kept.size() * kPlace;
        for (const QString& cell : std::as_const(kept))
            if (!cell.isEmpty()) cost += textCost(cell.size());
        if (count(cost)) rows.push_back({row, repeat, kept});
        return;
    }
    // Out of order: the rows one by one.
    for (int r = row; r < row + repeat; ++r)
        for (qsizetype c = 0; c < kept.size(); ++c)
            setCell(r, static_cast<int>(c), kept[c]);
}

} // namespace lists::sheet
