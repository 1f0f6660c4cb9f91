// The cost estimate and the quality index over large lists: both run before every print and
// preview, so they must stay linear in the rows.
#include "calc/CostEstimate.h"
#include "calc/ProjectCheck.h"
#include "calc/QualityIndex.h"
#include "lists/ListModel.h"

#include <benchmark/benchmark.h>
#include <vector>

namespace {

std::vector<lists::Column> columnsOf(int dataColumns) {
    std::vector<lists::Column> columns(dataColumns, lists::Column{QStringLiteral("SARAKE"), 1000});
    columns.push_back({QStringLiteral("Rivi"), 0});
    return columns;
}

lists::Row rowOf(QStringList cells, int dataColumns, long long number) {
    while (cells.size() < dataColumns)
        cells.append(QString());
    cells.append(lists::formatRowNumber(number));
    return lists::Row{cells, QString(), false};
}

// Work phases of 20 rows: a caption, a sub-phase, priced items and their continuation rows,
// blank rows between; the road works in the last quarter.
void fillQuantityList(lists::ListModel& list, int n) {
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
void fillRequirementList(lists::ListModel& list, int n) {
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

void BM_CalculateCosts(benchmark::State& state) {
    lists::ListModel list;
    fillQuantityList(list, static_cast<int>(state.range(0)));
    const calc::CostInputs inputs{QStringLiteral("€"), QStringLiteral("100"), QStringLiteral("112,5"),
                                  QStringLiteral("12"), QStringLiteral("24")};
    for (auto _ : state)
        benchmark::DoNotOptimize(calc::CalculateCosts(list, inputs));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
// 20,000 rows is the target size (at most 5 ms); the others show the time per row staying
// level, apart from the step where the list outgrows the processor's cache.
BENCHMARK(BM_CalculateCosts)->Arg(5000)->Arg(20000)->Arg(80000)->Unit(benchmark::kMillisecond);

void BM_CalculateQualityIndex(benchmark::State& state) {
    lists::ListModel list;
    fillRequirementList(list, static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(calc::CalculateQualityIndex(list));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CalculateQualityIndex)->Arg(5000)->Arg(20000)->Arg(80000)->Unit(benchmark::kMillisecond);

// The project check over a project of the target size: 20,000 quantity rows and 5,000
// requirement rows (at most 20 ms). The generated litteras repeat every hundred work phases, so
// the check also writes a few thousand findings about them.
void BM_CheckProject(benchmark::State& state) {
    lists::ListModel quantities, requirements;
    fillQuantityList(quantities, static_cast<int>(state.range(0)));
    fillRequirementList(requirements, static_cast<int>(state.range(1)));
    const calc::CheckSource source{&quantities, &requirements,
                                   calc::CostInputs{QStringLiteral("€"), QStringLiteral("100"),
                                                    QStringLiteral("112,5"), QStringLiteral("12"),
                                                    QStringLiteral("24")}};
    std::size_t findings = 0;
    for (auto _ : state) {
        const std::vector<calc::Finding> found = calc::CheckProject(source);
        findings = found.size();
        benchmark::DoNotOptimize(found.data());
    }
    state.counters["findings"] = static_cast<double>(findings);
    state.SetItemsProcessed(state.iterations() * (state.range(0) + state.range(1)));
}
BENCHMARK(BM_CheckProject)
    ->Args({5000, 1250})
    ->Args({20000, 5000})
    ->Args({80000, 20000})
    ->Unit(benchmark::kMillisecond);

// What a list view checks to mark the cells of one screen: 60 rows of each list.
void BM_CheckRowsOfOneScreen(benchmark::State& state) {
    lists::ListModel quantities, requirements;
    fillQuantityList(quantities, 20000);
    fillRequirementList(requirements, 5000);
    std::vector<calc::Finding> out;
    for (auto _ : state) {
        out.clear();
        for (int r = 10000; r < 10060; ++r)
            calc::CheckRow(calc::CheckPlace::Quantities, quantities, r, out);
        for (int r = 2000; r < 2060; ++r)
            calc::CheckRow(calc::CheckPlace::Requirements, requirements, r, out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(BM_CheckRowsOfOneScreen)->Unit(benchmark::kMicrosecond);

} // namespace
