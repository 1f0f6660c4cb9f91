#pragma once
// Generated lists shared by the benchmarks.
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"

#include <QStringList>
#include <benchmark/benchmark.h>
#include <initializer_list>
#include <vector>

namespace bench_lists {

using namespace lists;

// Runs a benchmark at each of these row counts, in milliseconds, with the fit to O(N).
inline void linearSizes(benchmark::internal::Benchmark* b, std::initializer_list<int> rowCounts) {
    for (const int n : rowCounts)
        b->Arg(n);
    b->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);
}

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

// The lists of the calculation benchmarks: a cost estimate and a requirement list of `n` rows.
inline std::vector<lists::Column> columnsOf(int dataColumns) {
    std::vector<lists::Column> columns(dataColumns, lists::Column{QStringLiteral("SARAKE"), 1000});
    columns.push_back({QStringLiteral("Rivi"), 0});
    return columns;
}

inline lists::Row rowOf(QStringList cells, int dataColumns, long long number) {
    while (cells.size() < dataColumns)
        cells.append(QString());
    cells.append(lists::formatRowNumber(number));
    return lists::Row{cells, QString(), false};
}

// Work phases of 20 rows: a caption, a sub-phase, priced items and their continuation rows,
// blank rows between; the road works in the last quarter.
inline void fillQuantityList(lists::ListModel& list, int n) {
    std::vector<lists::Row> rows;
    rows.reserve(n);
    for (int i = 0; i < n; ++i) {
        const int phase = i / 20;
        const QString littera = QString::number(7100 + phase % 100);
        QStringList cells;
        if (i == n * 3 / 4)
            cells = {QString(), QStringLiteral("TIETYÖT SILTAPAIKALLA")};
        else if (i % 20 == 0)
            cells = {littera, QStringLiteral("PÄÄLLYSRAKENTEEN BETONITYÖT")};
        else if (i % 20 == 1)
            cells = {littera + QStringLiteral(".1"), QStringLiteral("Kannen betonointi")};
        else if (i % 4 == 0)
            cells = {};
        else if (i % 4 == 3)
            cells = {QString(), QStringLiteral("jatkuu seuraavalla rivillä")};
        else
            cells = {QString(),
                     QStringLiteral("Betoni K40-1, rakenneosa"),
                     QStringLiteral("310"),
                     QString::number(i % 97) + QStringLiteral(",5"),
                     QStringLiteral("m3"),
                     QStringLiteral("1 234,50")};
        rows.push_back(rowOf(cells, 7, i + 1));
    }
    list.reset(columnsOf(7), std::move(rows));
}

// Work phases of 25 rows with a sub-phase; requirements of all three types, some inspected.
inline void fillRequirementList(lists::ListModel& list, int n) {
    static const QString types[] = {QStringLiteral("1 (siltakohtainen)"), QStringLiteral("2 (KLVn mukainen)"),
                                    QStringLiteral("3 (ohjeellinen)")};
    static const QString results[] = {QStringLiteral("Kyllä"), QStringLiteral("Ei"), QString()};
    std::vector<lists::Row> rows;
    rows.reserve(n);
    for (int i = 0; i < n; ++i) {
        const QString littera = QString::number(7100 + (i / 25) % 100);
        QStringList cells(24);
        if (i % 25 == 0) {
            cells[0] = littera;
            cells[2] = QStringLiteral("KAIVUT JA PENGERTYÖT");
        } else if (i % 25 == 10) {
            cells[0] = littera + QStringLiteral(".1");
            cells[2] = QStringLiteral("Kaivutason tarkastus");
        } else {
            cells[1] = QString::number(i % 25);
            cells[2] = QStringLiteral("Kaivutason korkeus suunnitelman mukainen");
            cells[3] = types[i % 3];
            cells[10] = QString::number(i % 6);
            cells[20] = results[i % 3 == 0 ? 0 : (i / 3) % 3];
            cells[23] = QStringLiteral("0,5 (virhe vaikuttaa osittain)");
        }
        rows.push_back(rowOf(cells, 24, i + 1));
    }
    list.reset(columnsOf(24), std::move(rows));
}

} // namespace bench_lists
