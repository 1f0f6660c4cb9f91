// The row editor on a 20,000-row requirement list: opening the card on row 10,000, and stepping
// from there to the next row that passes each browse filter, card reload and repaint included.
// Each must stay well under 20 ms.
#include "documents/DocumentHost.h"
#include "documents/Form5.h"
#include "documents/RowCard.h"
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <memory>

namespace {

constexpr int kRows = 20000;
constexpr int kStart = 10000;

// The end-of-list message of a filter that finds nothing must not wait for a click.
class SilentDialogs : public platform::Dialogs {
public:
    platform::MsgAnswer message(const platform::MessageRequest&) override { return platform::MsgAnswer::Ok; }
    QStringList files(const platform::FileRequest&) override { return {}; }
    std::optional<QFont> font(const QFont&) override { return std::nullopt; }
    std::optional<QColor> color(const QColor&) override { return std::nullopt; }
};

class BenchHost : public documents::DocumentHost {
public:
    shell::AppState& appState() override { return state; }
    void contentChanged(QWidget*) override {}
    void listFocused(lists::ListView*) override {}
    shell::AppState state;
};

// A requirement list in the shape of a real one: a work phase caption every 25 rows, then
// requirements whose type, method, result and texts vary, so that every filter finds rows at
// its own distance. Only the next-to-last row names a reference file, so that filter walks
// half the list.
void makeRequirements(lists::ListModel& list) {
    // The columns of the shipped template.
    lists::InitListView(list, QStringLiteral(TAMRIK_SOURCE_DIR "/data/TAMRIK30_T4.csv"));
    const int columns = list.lastDataCol();
    std::vector<lists::Row> rows;
    rows.reserve(kRows);
    for (int i = 0; i < kRows; ++i) {
        QStringList c(columns);
        if (i % 25 == 0) {
            c[0] = QString::number(7110 + (i / 25) % 80);
            c[2] = QStringLiteral("BETONITYÖT");
        } else {
            c[1] = QString::number(i % 25);
            c[2] =
                QStringLiteral("Betonin lujuusluokka vähintään C35/45, kelpoisuus osoitetaan koekappalein");
            c[3] = QString::number(1 + i % 3) + QLatin1Char(' ');
            c[4] = QStringLiteral("SILKO 1.301");
            c[5] = QStringLiteral("35");
            c[8] = QStringLiteral("MPa");
            c[9] = QString(QLatin1Char("MKTA"[i % 4]));
            c[10] = QStringLiteral("3");
            if (i % 7 == 0) c[11] = QStringLiteral("Koetulokset valvojalle ennen muottien purkua.");
            if (i % 11 == 0) c[14] = QStringLiteral("Koekappaleet 28 vrk, keskiarvo 41 MPa.");
            if (i % 13 == 0) c[19] = QStringLiteral("Täyttää vaatimukset.");
            c[20] = i % 5 == 0 ? QStringLiteral("Ei") : i % 5 < 3 ? QStringLiteral("Kyllä") : QString();
            c[23] = QStringLiteral("0,5");
        }
        if (i == kRows - 2) c[13] = QStringLiteral("koetulokset.pdf");
        c.append(lists::formatRowNumber(i + 1));
        rows.push_back({c, {}, false});
    }
    list.setKind(lists::kind::Requirements);
    list.replaceRows(std::move(rows));
}

struct Fixture {
    Fixture() {
        platform::Dialogs::install(&dialogs);
        host.state.ProgramMode = 2;
        makeRequirements(list);
        view.setList(&list);
        view.resize(900, 400);
        view.show();
        list.selectOnly(kStart);
        editor = std::make_unique<documents::Form5>(host);
        editor->ShowListViewEditor(&view);
        editor->show();
        QCoreApplication::processEvents();
    }
    ~Fixture() { platform::Dialogs::install(nullptr); }
    SilentDialogs dialogs;
    BenchHost host;
    lists::ListModel list;
    lists::ListView view;
    std::unique_ptr<documents::Form5> editor;
};

void BM_OpenRowEditorOnRow10000(benchmark::State& state) {
    Fixture f;
    for (auto _ : state) {
        // A new window each time: the card is built, filled and shown.
        documents::Form5 editor(f.host);
        f.list.selectOnly(kStart);
        editor.ShowListViewEditor(&f.view);
        editor.show();
        QCoreApplication::processEvents();
        if (editor.row() != kStart) state.SkipWithError("not on row 10,000");
    }
}
BENCHMARK(BM_OpenRowEditorOnRow10000)->Unit(benchmark::kMillisecond);

// The window stays between uses: opening it again only fills the card.
void BM_ReopenRowEditorOnRow10000(benchmark::State& state) {
    Fixture f;
    for (auto _ : state) {
        state.PauseTiming();
        f.editor->hide();
        f.list.selectOnly(1);
        QCoreApplication::processEvents();
        state.ResumeTiming();
        f.list.selectOnly(kStart);
        f.editor->ShowListViewEditor(&f.view);
        f.editor->show();
        QCoreApplication::processEvents();
    }
    if (f.editor->row() != kStart) state.SkipWithError("not on row 10,000");
}
BENCHMARK(BM_ReopenRowEditorOnRow10000)->Unit(benchmark::kMillisecond);

void BM_BrowseFromRow10000(benchmark::State& state) {
    static Fixture* f = new Fixture; // one list and window for every filter
    const int code = static_cast<int>(state.range(0));
    int found = 0;
    for (auto _ : state) {
        state.PauseTiming();
        f->list.selectOnly(kStart);
        f->editor->ImportToEditor();
        QCoreApplication::processEvents();
        state.ResumeTiming();
        f->editor->Browse(code);
        QCoreApplication::processEvents();
        found = f->editor->row();
    }
    if (found <= kStart) state.SkipWithError("no row found");
    state.counters["rows_walked"] = found - kStart;
}
BENCHMARK(BM_BrowseFromRow10000)
    ->ArgName("code")
    ->Arg(documents::browse::Any)
    ->Arg(documents::browse::Unchecked)
    ->Arg(documents::browse::Checked)
    ->Arg(documents::browse::Failed)
    ->Arg(documents::browse::Met)
    ->Arg(documents::browse::Measurement)
    ->Arg(documents::browse::Review)
    ->Arg(documents::browse::Certificate)
    ->Arg(documents::browse::Type1)
    ->Arg(documents::browse::Type2)
    ->Arg(documents::browse::Type3)
    ->Arg(documents::browse::PlanText)
    ->Arg(documents::browse::InspectionText)
    ->Arg(documents::browse::ReportText)
    ->Arg(documents::browse::ReferenceFile)
    ->Arg(documents::browse::Caption)
    ->Unit(benchmark::kMillisecond);

// "Täyttää vaatimukset, siirry seuraavaan": mark, write back, step.
void BM_CheckAndBrowseNext(benchmark::State& state) {
    Fixture f;
    constexpr int requirement = kStart + 2;
    for (auto _ : state) {
        state.PauseTiming();
        f.list.setCell(requirement, 21, QString());
        f.list.selectOnly(requirement);
        f.editor->ImportToEditor();
        QCoreApplication::processEvents();
        state.ResumeTiming();
        f.editor->CheckAndBrowseNext();
        QCoreApplication::processEvents();
    }
    if (f.list.cell(requirement, 21) != QStringLiteral("Kyllä") || f.editor->row() <= requirement)
        state.SkipWithError("not marked and stepped");
}
BENCHMARK(BM_CheckAndBrowseNext)->Unit(benchmark::kMillisecond);

} // namespace
