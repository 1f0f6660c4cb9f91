#pragma once
// Lists for the list tests, written as tables of cell texts.
#include "common/ListHeaders.h"
#include "common/QtPrinters.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

#include <QStringList>
#include <ostream>
#include <vector>

namespace lists_test {

// A list of the given kind; rows hold the cells before "Rivi" and are numbered 1, 2, ...
// (a row may be shorter than the header: the rest stays empty).
inline void fill(lists::ListModel& list, const QString& kind, const QStringList& headers,
                 const std::vector<QStringList>& rows) {
    std::vector<lists::Column> columns;
    for (const QString& h : headers)
        columns.push_back({h, 1000});
    columns.push_back({QStringLiteral("Rivi"), 0});
    std::vector<lists::Row> out;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        lists::Row row;
        row.cells = rows[i];
        row.cells.resize(headers.size());
        row.cells.append(lists::formatRowNumber(static_cast<long long>(i) + 1));
        out.push_back(row);
    }
    list.setKind(kind);
    list.reset(std::move(columns), std::move(out));
}

inline QStringList quantityHeaders() {
    return testing_support::quantityHeaders();
}

inline QStringList qualityHeaders() {
    return {"LITTERA", "NRO", "LAATUVAATIMUS", "TYYPPI", "VIITE", "VAATIMUS", "ALARAJA", "YLÄRAJA"};
}

// The cells before "Rivi" of every row.
inline std::vector<QStringList> dataRows(const lists::ListModel& list) {
    std::vector<QStringList> out;
    for (int r = 1; r <= list.rows(); ++r)
        out.push_back(list.row(r).cells.toStringList().mid(0, list.lastDataCol()));
    return out;
}

// The texts of one column, top to bottom.
inline QStringList columnTexts(const lists::ListModel& list, int c) {
    QStringList out;
    for (int r = 1; r <= list.rows(); ++r)
        out.append(list.cell(r, c).toString());
    return out;
}

inline QStringList rowNumbers(const lists::ListModel& list) {
    return columnTexts(list, list.cols());
}

} // namespace lists_test
