// A project of 100000 quantity rows and 20000 requirements in the shown windows: each action a
// user takes on it (open, scroll to the end and back, sort by a column, save) as one iteration.
// An action should stay under a second.
#include "BenchLists.h"
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "lists/ui/ListEditor.h"
#include "lists/ui/ListView.h"
#include "platform/Dialogs.h"
#include "shell/Captions.h"
#include "shell/MDIForm1.h"
#include "shell/ProjectFiles.h"

#include <QApplication>
#include <QScrollBar>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int kQuantities = 100000;
constexpr int kRequirements = 20000;

// Every question answered yes (the sort asks first), nothing shown.
class YesDialogs : public platform::Dialogs {
public:
    YesDialogs() { install(this); }
    ~YesDialogs() override { install(nullptr); }
    platform::MsgAnswer message(const platform::MessageRequest& r) override {
        return r.buttons == platform::MsgButtons::Ok ? platform::MsgAnswer::Ok : platform::MsgAnswer::Yes;
    }
    QStringList files(const platform::FileRequest&) override { return {}; }
    std::optional<QFont> font(const QFont&) override { return std::nullopt; }
    std::optional<QColor> color(const QColor&) override { return std::nullopt; }
};

struct LargeProject {
    LargeProject() {
        qputenv("XDG_CONFIG_HOME", (dir.path() + QStringLiteral("/config")).toLocal8Bit());
        main.setProgramDirectory(QStringLiteral(TAMRIK_SOURCE_DIR) + QStringLiteral("/data/"));
        main.startUp(false);
        main.appState().settings.SaveSettingsOnExit = false;
        main.resize(1200, 800);
        main.show();
        main.ToolbarMenuActions(QStringLiteral("Rulers"));
        f2 = main.ParseFormIndeces().f2;
        bench_lists::fillQuantityList(*f2->list(0), kQuantities);
        bench_lists::fillRequirementList(*f2->list(1), kRequirements);
        file = dir.filePath(QStringLiteral("suuri.sl"));
        shell::WriteSlFile(main, project(), file, false);
        QApplication::processEvents();
    }
    ~LargeProject() {
        for (auto* w : main.projectWindows())
            main.FormUntouch(w);
    }
    QString project() const { return shell::ParseFileName(main.ActiveCaption()).project(); }

    YesDialogs dialogs;
    QTemporaryDir dir;
    shell::MDIForm1 main;
    documents::Form2* f2 = nullptr;
    QString file;
};

LargeProject& large() {
    static auto* project = new LargeProject;
    return *project;
}

void BM_LargeProjectOpen(benchmark::State& state) {
    LargeProject& p = large();
    for (auto _ : state) {
        const bool ok = shell::ReadSlFile(p.main, p.file, p.file, false);
        QApplication::processEvents();
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_LargeProjectOpen)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LargeProjectScroll(benchmark::State& state) {
    LargeProject& p = large();
    lists::ListView* view = p.f2->ListView1[0];
    for (auto _ : state) {
        // To the end and back, each drawn.
        view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
        view->viewport()->repaint();
        view->verticalScrollBar()->setValue(0);
        view->viewport()->repaint();
    }
}
BENCHMARK(BM_LargeProjectScroll)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_LargeProjectSort(benchmark::State& state) {
    LargeProject& p = large();
    lists::ListEditor* editor = lists::ListEditor::of(p.f2->ListView1[0]);
    int column = 2;
    for (auto _ : state) {
        // Another column each time, so that every run really moves the rows.
        const bool ok = editor->SortItems(column);
        column = column == 2 ? 4 : 2;
        QApplication::processEvents();
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_LargeProjectSort)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LargeProjectSave(benchmark::State& state) {
    LargeProject& p = large();
    for (auto _ : state) {
        const bool ok = shell::WriteSlFile(p.main, p.project(), p.file, false);
        QApplication::processEvents();
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_LargeProjectSave)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
