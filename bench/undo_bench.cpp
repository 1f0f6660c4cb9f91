// Benchmarks of undo and redo on lists of 5,000 to 20,000 rows: a paste of as many rows as the
// list has (the target: at most 50 ms to undo at 20,000 rows, with the list shown in a view),
// and the deletion of every other row. Both must grow linearly with the rows.
#include "BenchLists.h"
#include "lists/EditHistory.h"
#include "lists/ListEditing.h"
#include "lists/ListStep.h"
#include "lists/ui/ListView.h"

#include <benchmark/benchmark.h>
#include <memory>

using namespace lists;
using bench_lists::makeQuantityList;

namespace {

void sizes(benchmark::internal::Benchmark* b) {
    b->Arg(5000)->Arg(10000)->Arg(20000)->Complexity(benchmark::oN)->Unit(benchmark::kMillisecond);
}

// Clipboard text of `rows` quantity rows.
QString clipRows(int rows) {
    QString text;
    for (int r = 0; r < rows; ++r)
        text += QStringLiteral("\tLiitetty työ %1\tTuki %2\t12,5\tm3\t45,50\thuom\r").arg(r).arg(r % 9);
    return text;
}

// A list of state.range(0) rows in a history, optionally shown in a view, with one step made.
struct Undoable {
    EditHistory history;
    ListModel list;
    std::unique_ptr<ListView> view;
    explicit Undoable(const benchmark::State& state, bool shown) {
        history.setLimit(10);
        makeQuantityList(list, static_cast<int>(state.range(0)));
        list.setHistory(&history);
        if (shown) {
            view = std::make_unique<ListView>();
            view->setList(&list);
            view->resize(900, 600);
            view->show();
        }
    }
};

void undoPaste(benchmark::State& state, bool shown) {
    Undoable u(state, shown);
    const int n = static_cast<int>(state.range(0));
    u.list.selectOnly(n / 2);
    {
        ListStep recorded(u.list, step::Paste);
        PasteText(u.list, clipRows(n), EditContext{});
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(u.history.undo(3));
        state.PauseTiming();
        u.history.redo(3);
        state.ResumeTiming();
    }
    if (u.list.rows() != 2 * n) state.SkipWithError("the paste was not redone");
    const ListJournal* journal = journalOf(u.history.stack().command(0));
    if (!journal || journal->held().rows != static_cast<std::size_t>(n))
        state.SkipWithError("the step keeps more than the pasted rows");
    state.SetComplexityN(n);
}

void BM_UndoPasteOfAsManyRows(benchmark::State& state) {
    undoPaste(state, false);
}
BENCHMARK(BM_UndoPasteOfAsManyRows)->Apply(sizes);

void BM_UndoPasteOfAsManyRowsInAView(benchmark::State& state) {
    undoPaste(state, true);
}
BENCHMARK(BM_UndoPasteOfAsManyRowsInAView)->Apply(sizes);

void BM_RedoPasteOfAsManyRowsInAView(benchmark::State& state) {
    Undoable u(state, true);
    const int n = static_cast<int>(state.range(0));
    u.list.selectOnly(n / 2);
    {
        ListStep recorded(u.list, step::Paste);
        PasteText(u.list, clipRows(n), EditContext{});
    }
    for (auto _ : state) {
        state.PauseTiming();
        u.history.undo(3);
        state.ResumeTiming();
        benchmark::DoNotOptimize(u.history.redo(3));
    }
    state.SetComplexityN(n);
}
BENCHMARK(BM_RedoPasteOfAsManyRowsInAView)->Apply(sizes);

// Every other row deleted: the rows come back at scattered places.
void BM_UndoDeleteOfEveryOtherRow(benchmark::State& state) {
    Undoable u(state, true);
    const int n = static_cast<int>(state.range(0));
    for (int r = 1; r <= n; r += 2)
        u.list.setSelected(r, true);
    {
        ListStep recorded(u.list, step::DeleteRows);
        ListViewRowEdit(u.list, action::DeleteRows, EditContext{});
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(u.history.undo(3));
        state.PauseTiming();
        u.history.redo(3);
        state.ResumeTiming();
    }
    if (u.list.rows() != n / 2) state.SkipWithError("the deletion was not redone");
    state.SetComplexityN(n);
}
BENCHMARK(BM_UndoDeleteOfEveryOtherRow)->Apply(sizes);

} // namespace
