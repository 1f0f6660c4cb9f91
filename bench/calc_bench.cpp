// The cost estimate and the quality index over large lists: both run before every print and
// preview, so they must stay linear in the rows.
#include "calc/CostEstimate.h"
#include "calc/ProjectCheck.h"
#include "calc/QualityIndex.h"
#include "BenchLists.h"
#include "lists/ListModel.h"

#include <benchmark/benchmark.h>
#include <vector>

namespace {

using bench_lists::fillQuantityList;
using bench_lists::fillRequirementList;

void BM_CalculateCosts(benchmark::State& state) {
    lists::ListModel list;
    fillQuantityList(list, static_cast<int>(state.range(0)));
    const calc::CostInputs inputs{QStringLiteral("€"), QStringLiteral("100"), QStringLiteral("112,5"),
                                  QStringLiteral("12"), QStringLiteral("24")};
    for (auto _ : state)
        benchmark::DoNotOptimize(calc::CalculateCosts(list, inputs));
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
// 20,000 rows is the target size (at most 5 ms); the others show the time per row staying
// level, apart from the step where the list outgrows the processor's cache.
void sizes(benchmark::internal::Benchmark* b) {
    bench_lists::linearSizes(b, {5000, 20000, 80000, 100000});
}
BENCHMARK(BM_CalculateCosts)->Apply(sizes);

// The quality index runs again over a list that has not changed since its last run (the print
// selection, the preview and the summary each run it): every row's memo is there.
void BM_CalculateQualityIndex(benchmark::State& state) {
    lists::ListModel list;
    fillRequirementList(list, static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(calc::CalculateQualityIndex(list));
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_CalculateQualityIndex)->Apply(sizes);

// Times the quality index over `list` once per iteration after `prepare`, which is not timed,
// and counts the list's rows as the items.
template <typename Prepare>
void timeQualityIndex(benchmark::State& state, lists::ListModel& list, Prepare prepare) {
    for (auto _ : state) {
        state.PauseTiming();
        prepare();
        state.ResumeTiming();
        benchmark::DoNotOptimize(calc::CalculateQualityIndex(list));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

// The run after a user changed one cell: one row is read from its texts again.
void BM_QualityIndexAfterACellEdit(benchmark::State& state) {
    lists::ListModel list;
    const int n = static_cast<int>(state.range(0));
    fillRequirementList(list, n);
    calc::CalculateQualityIndex(list);
    // A requirement row in the middle of the list, its result toggled between two texts.
    const int row = n / 2 + 2 - (n / 2) % 25;
    const QString results[] = {QStringLiteral("Kyllä"), QStringLiteral("Ei")};
    int edits = 0;
    timeQualityIndex(state, list, [&] { list.setCell(row, 21, results[++edits % 2]); });
}
BENCHMARK(BM_QualityIndexAfterACellEdit)->Apply(sizes);

// The first run over a list just read: every row is read from its texts.
void BM_QualityIndexFirstRun(benchmark::State& state) {
    lists::ListModel made;
    fillRequirementList(made, static_cast<int>(state.range(0)));
    // Copies made before any run carry no memo.
    const std::vector<lists::Row> unread = made.allRows();
    lists::ListModel list;
    timeQualityIndex(state, list, [&] { list.reset(made.columns(), unread); });
}
BENCHMARK(BM_QualityIndexFirstRun)->Apply(sizes);

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
    state.SetComplexityN(state.range(0) + state.range(1));
}
BENCHMARK(BM_CheckProject)
    ->Args({5000, 1250})
    ->Args({20000, 5000})
    ->Args({80000, 20000})
    ->Args({100000, 25000})
    ->Complexity(benchmark::oN)
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
