#pragma once
// Lists for the calculation tests, built in memory: a quantity list with its seven columns and
// a requirement list with its 24, each followed by "Rivi".
#include "common/ListHeaders.h"
#include "lists/ListModel.h"

#include <QStringList>
#include <vector>

namespace calc_test {

inline void fillList(lists::ListModel& list, const QString& kind, const QStringList& headers,
                     const std::vector<QStringList>& rows) {
    std::vector<lists::Column> columns;
    for (const QString& h : headers)
        columns.push_back({h, 1000});
    columns.push_back({QStringLiteral("Rivi"), 0});
    std::vector<lists::Row> data;
    for (size_t i = 0; i < rows.size(); ++i) {
        lists::Row row;
        row.cells = rows[i];
        while (row.cells.size() < headers.size())
            row.cells.append(QString());
        row.cells.append(lists::formatRowNumber(static_cast<long long>(i + 1)));
        data.push_back(std::move(row));
    }
    list.setKind(kind);
    list.reset(std::move(columns), std::move(data));
}

// Quantity rows: littera, work phase, structural part, quantity, unit, unit price, remarks.
inline void fillQuantityList(lists::ListModel& list, const std::vector<QStringList>& rows) {
    fillList(list, QStringLiteral("Määräluettelo ja kustannusarvio"), testing_support::quantityHeaders(),
             rows);
}

inline QStringList requirementHeaders() {
    return testing_support::requirementHeaders();
}

// The drop-down texts of a requirement's type and result.
inline const QString kType1 = QStringLiteral("1 (siltakohtainen)");
inline const QString kType2 = QStringLiteral("2 (KLVn mukainen)");
inline const QString kType3 = QStringLiteral("3 (ohjeellinen)");
inline const QString kYes = QStringLiteral("Kyllä");
inline const QString kNo = QStringLiteral("Ei");

// A caption row of the requirement list: littera in column 1, heading in column 3.
inline QStringList caption(const QString& littera, const QString& text) {
    QStringList cells(24);
    cells[0] = littera;
    cells[2] = text;
    return cells;
}

// A requirement row: identifier (column 2), text, type, weight (11), result (21), factor (24).
inline QStringList requirement(const QString& id, const QString& text, const QString& type,
                               const QString& weight, const QString& result = QString(),
                               const QString& factor = QString()) {
    QStringList cells(24);
    cells[1] = id;
    cells[2] = text;
    cells[3] = type;
    cells[10] = weight;
    cells[20] = result;
    cells[23] = factor;
    return cells;
}

inline void fillRequirementList(lists::ListModel& list, const std::vector<QStringList>& rows) {
    fillList(list, QStringLiteral("Laatuvaatimukset"), requirementHeaders(), rows);
}

} // namespace calc_test
