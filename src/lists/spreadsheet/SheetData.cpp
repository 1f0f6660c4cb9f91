#include "lists/spreadsheet/SheetData.h"

#include <algorithm>

namespace lists::sheet {

namespace {
// What a stored row costs besides its places: its entry and its list's header.
constexpr qint64 kRowCost = qint64(sizeof(SheetRow)) + 32;
} // namespace

SheetRow& SheetBuilder::rowAt(int row) {
    auto& rows = m_data.rows;
    if (rows.empty() || rows.back().index + rows.back().repeat <= row) {
        rows.push_back({row, 1, {}});
        return rows.back();
    }
    // An earlier row: find the run that holds it, or the place for it.
    auto it = std::upper_bound(rows.begin(), rows.end(), row,
                               [](int r, const SheetRow& sr) { return r < sr.index; });
    if (it != rows.begin()) {
        auto run = std::prev(it);
        if (run->index + run->repeat > row) {
            if (run->repeat == 1) return *run;
            // Split the run so that the row stands alone.
            const SheetRow whole = *run;
            std::vector<SheetRow> parts;
            if (row > whole.index) parts.push_back({whole.index, row - whole.index, whole.cells});
            parts.push_back({row, 1, whole.cells});
            if (row + 1 < whole.index + whole.repeat)
                parts.push_back({row + 1, whole.index + whole.repeat - row - 1, whole.cells});
            const auto at = run - rows.begin() + (row > whole.index ? 1 : 0);
            *run = parts.front();
            rows.insert(std::next(run), parts.begin() + 1, parts.end());
            return rows[static_cast<std::size_t>(at)];
        }
    }
    return *rows.insert(it, SheetRow{row, 1, {}});
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

SheetData SheetBuilder::take() {
    std::erase_if(m_data.rows, [](const SheetRow& r) { return r.cells.isEmpty(); });
    return std::move(m_data);
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
