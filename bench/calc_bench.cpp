// The cost estimate and the quality index over large lists: both run before every print and
// preview, so they must stay linear in the rows.
#include "calc/CostEstimate.h"
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

} // namespace
