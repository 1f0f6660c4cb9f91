#include "lists/spreadsheet/SheetData.h"

#include <algorithm>

namespace lists::sheet {

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
    if (!keep(text.size())) return;
    QStringList& cells = rowAt(row).cells;
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
        // A run is stored once.
        qsizetype length = 0;
        for (const QString& cell : std::as_const(kept))
            length += cell.size();
        if (keep(length)) rows.push_back({row, repeat, kept});
        return;
    }
    // Out of order: the rows one by one.
    for (int r = row; r < row + repeat; ++r)
        for (qsizetype c = 0; c < kept.size(); ++c)
            setCell(r, static_cast<int>(c), kept[c]);
}

} // namespace lists::sheet
