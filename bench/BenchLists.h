#pragma once
// Generated lists shared by the benchmarks.
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

#include <QStringList>
#include <vector>

namespace bench_lists {

using namespace lists;

// A quantity list as the projects hold it, without blank rows: captions, subcaptions,
// entries with continuation and remark rows, repeated to the wanted length.
inline void makeQuantityList(ListModel& list, int rowCount) {
    const QStringList headers{"LITTERA", "TYÖVAIHE",  "RAK. OSA",    "MÄÄRÄ",
                              "YKSIKKÖ", "YKS.HINTA", "HUOMAUTUKSET"};
    std::vector<Row> rows;
    rows.reserve(rowCount);
    auto add = [&](QStringList cells) {
        cells.resize(headers.size());
        cells.append(formatRowNumber(static_cast<long long>(rows.size()) + 1));
        rows.push_back({cells, {}, false});
    };
    for (int block = 0; static_cast<int>(rows.size()) < rowCount; ++block) {
        const QString littera = QString::number(7100 + block % 100);
        add({littera, "SILLAN RAKENNUSOSA " + QString::number(block)});
        for (int sub = 1; sub <= 3 && static_cast<int>(rows.size()) < rowCount; ++sub) {
            add({littera + "." + QString::number(sub), "Alaryhmä " + QString::number(sub), "Koko silta"});
            for (int e = 0; e < 4 && static_cast<int>(rows.size()) < rowCount; ++e) {
                add({"", "Työ " + QString::number(e), "Tuki " + QString::number(e), "12,5", "m3", "45,50"});
                if (e % 2 == 0) add({"", "jatkoteksti"});
                if (e == 3) add({"", "", "", "", "", "", "huomautus"});
            }
        }
    }
    rows.resize(rowCount);
    std::vector<Column> columns = columnsForHeaders(headers);
    list.setKind(kind::QuantityList);
    list.reset(std::move(columns), std::move(rows));
}

} // namespace bench_lists
