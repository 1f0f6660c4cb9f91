// Benchmarks of list editing on lists of 5,000 to 20,000 rows: inserting an empty row before
// each of 200 selected rows, and transferring 500 entries from a unit price list. Both must
// grow linearly with the rows of the list they change.
#include "BenchLists.h"
#include "lists/ListEditing.h"

#include <benchmark/benchmark.h>

using namespace lists;
using bench_lists::makeQuantityList;

namespace {

void sizes(benchmark::internal::Benchmark* b) {
    b->Arg(5000)->Arg(10000)->Arg(20000)->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);
}

void BM_InsertBeforeSelectedRows(benchmark::State& state) {
    ListModel list;
    const int step = static_cast<int>(state.range(0)) / 200;
    for (auto _ : state) {
        state.PauseTiming();
        makeQuantityList(list, static_cast<int>(state.range(0)));
        for (int r = step; r <= list.rows(); r += step)
            list.setSelected(r, true);
        state.ResumeTiming();
        ListViewRowEdit(list, action::InsertRow, EditContext{});
    }
    if (list.rows() != state.range(0) + 200) state.SkipWithError("not 200 rows inserted");
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_InsertBeforeSelectedRows)->Apply(sizes);

// A unit price list of 500 priced items under 50 captions with two subcaptions each, all
// selected. Half of the captions are found in the generated quantity list.
void makeUnitPrices(ListModel& list) {
    std::vector<QStringList> rows;
    for (int c = 0; c < 50; ++c) {
        const QString littera = QString::number(7100 + 2 * c);
        rows.push_back({littera, "SILLAN RAKENNUSOSA " + QString::number(2 * c)});
        for (int s = 1; s <= 2; ++s) {
            rows.push_back({littera + "." + QString::number(s), "Alaryhmä " + QString::number(s)});
            for (int e = 0; e < 5; ++e)
                rows.push_back(
                    {"", "Hinnoiteltu työ " + QString::number(e), "m2", "10,00", "12,00", "14,00", "huom"});
        }
    }
    std::vector<Row> out;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Row row;
        QStringList cells = rows[i];
        cells.resize(7);
        cells.append(formatRowNumber(static_cast<long long>(i) + 1));
        row.cells = cells;
        row.selected = true;
        out.push_back(row);
    }
    list.setKind(kind::UnitPriceList);
    list.reset(
        bench_lists::columnsForHeaders({"LITTERA", "TYÖVAIHE", "YKSIKKÖ", "A", "B", "C", "HUOMAUTUKSET"}),
        std::move(out));
}

void transfer(benchmark::State& state, int mode) {
    ListModel prices;
    makeUnitPrices(prices);
    ListModel list;
    makeQuantityList(list, static_cast<int>(state.range(0)));
    const std::vector<Row> original = list.allRows();
    TransferResult result;
    for (auto _ : state) {
        state.PauseTiming();
        list.replaceRows(original);
        state.ResumeTiming();
        result = TransferData(list, prices, list.rows() / 2, mode, TransferOptions{3, 5});
    }
    if (result.insertedRows < 500) state.SkipWithError("not every entry was transferred");
    state.SetComplexityN(state.range(0));
}

void BM_TransferSorted(benchmark::State& state) {
    transfer(state, 0);
}
BENCHMARK(BM_TransferSorted)->Apply(sizes);

void BM_TransferToTheEnd(benchmark::State& state) {
    transfer(state, 4);
}
BENCHMARK(BM_TransferToTheEnd)->Apply(sizes);

} // namespace
