// A project of 100000 quantity rows and 20000 requirements in the shown windows: each action a
// user takes on it (open, close, scroll by keys, wheel and scroll bar, sort by each column, save,
// save as, change the mode) as one iteration. An action should stay under a second.
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
#include <QFile>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>
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
    // The next file a file dialog gives; none (cancelled) when empty.
    QStringList files(const platform::FileRequest&) override {
        return nextFile.isEmpty() ? QStringList() : QStringList{nextFile};
    }
    QString nextFile;
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
        // The same project under a second name, for opening it beside the first.
        copy = dir.filePath(QStringLiteral("kopio.sl"));
        QFile::copy(file, copy);
        // And beside the benchmark, for measuring the whole program on it (time and memory).
        const QString beside =
            QCoreApplication::applicationDirPath() + QStringLiteral("/large-windows-project.sl");
        QFile::remove(beside);
        QFile::copy(file, beside);
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
    QString copy;
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

// "Avaa..." of the copy into windows of their own, then "Sulje" of that project.
void BM_LargeProjectOpenInWindows(benchmark::State& state) {
    LargeProject& p = large();
    for (auto _ : state) {
        p.dialogs.nextFile = p.copy;
        p.main.FileMenuActions(1);
        QApplication::processEvents();
        state.PauseTiming();
        p.dialogs.nextFile.clear();
        const bool opened = p.main.projectWindowsOf(p.copy).complete();
        if (!opened) state.SkipWithError("the copy did not open");
        state.ResumeTiming();
        p.main.UnloadActiveProject();
        QApplication::processEvents();
    }
}
BENCHMARK(BM_LargeProjectOpenInWindows)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_LargeProjectClose(benchmark::State& state) {
    LargeProject& p = large();
    for (auto _ : state) {
        state.PauseTiming();
        p.dialogs.nextFile = p.copy;
        p.main.FileMenuActions(1);
        QApplication::processEvents();
        p.dialogs.nextFile.clear();
        state.ResumeTiming();
        p.main.UnloadActiveProject();
        QApplication::processEvents();
    }
    p.main.activateWindow(p.f2);
}
BENCHMARK(BM_LargeProjectClose)->Unit(benchmark::kMillisecond)->Iterations(2);

// A key pressed in the quantity list and the list drawn again; the key's opposite (not timed)
// brings the view back.
void BM_LargeProjectKey(benchmark::State& state, Qt::Key key, Qt::KeyboardModifiers modifiers, Qt::Key back,
                        Qt::KeyboardModifiers backModifiers) {
    LargeProject& p = large();
    lists::ListView* view = p.f2->ListView1[0];
    p.main.activateWindow(p.f2);
    view->setFocus();
    QTest::keyClick(view, back, backModifiers);
    for (auto _ : state) {
        const int before = view->verticalScrollBar()->value();
        QTest::keyClick(view, key, modifiers);
        view->viewport()->repaint();
        state.PauseTiming();
        if (view->verticalScrollBar()->value() == before)
            state.SkipWithError("the key did not move the list");
        QTest::keyClick(view, back, backModifiers);
        view->viewport()->repaint();
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(BM_LargeProjectKey, PgDn, Qt::Key_PageDown, Qt::NoModifier, Qt::Key_PageUp, Qt::NoModifier)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(BM_LargeProjectKey, End, Qt::Key_End, Qt::NoModifier, Qt::Key_Home, Qt::NoModifier)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(BM_LargeProjectKey, CtrlEnd, Qt::Key_End, Qt::ControlModifier, Qt::Key_Home,
                  Qt::ControlModifier)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(BM_LargeProjectKey, CtrlHome, Qt::Key_Home, Qt::ControlModifier, Qt::Key_End,
                  Qt::ControlModifier)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
// Every row from the first to the last selected.
BENCHMARK_CAPTURE(BM_LargeProjectKey, ShiftCtrlEnd, Qt::Key_End, Qt::ShiftModifier | Qt::ControlModifier,
                  Qt::Key_Home, Qt::ControlModifier)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

// Ten notches of the wheel down over the quantity list, each drawn.
void BM_LargeProjectWheel(benchmark::State& state) {
    LargeProject& p = large();
    lists::ListView* view = p.f2->ListView1[0];
    const QPointF at(view->viewport()->width() / 2.0, view->viewport()->height() / 2.0);
    for (auto _ : state) {
        for (int notch = 0; notch < 10; ++notch) {
            QWheelEvent wheel(at, view->viewport()->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(view->viewport(), &wheel);
            view->viewport()->repaint();
        }
    }
    view->verticalScrollBar()->setValue(0);
}
BENCHMARK(BM_LargeProjectWheel)->Unit(benchmark::kMillisecond)->Iterations(5);

// The scroll bar's handle dragged from the top to the bottom in twenty moves, each drawn.
void BM_LargeProjectScrollBarDrag(benchmark::State& state) {
    LargeProject& p = large();
    lists::ListView* view = p.f2->ListView1[0];
    QScrollBar* bar = view->verticalScrollBar();
    for (auto _ : state) {
        bar->setValue(0);
        QStyleOptionSlider option;
        option.initFrom(bar);
        option.orientation = Qt::Vertical;
        option.minimum = bar->minimum();
        option.maximum = bar->maximum();
        option.sliderPosition = bar->sliderPosition();
        option.sliderValue = bar->value();
        option.singleStep = bar->singleStep();
        option.pageStep = bar->pageStep();
        option.upsideDown = false;
        const QRect handle =
            bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, bar);
        const QPoint start = handle.center();
        QTest::mousePress(bar, Qt::LeftButton, Qt::NoModifier, start);
        for (int step = 1; step <= 20; ++step) {
            const QPointF to(start.x(), start.y() + (bar->height() - start.y()) * step / 20.0);
            QMouseEvent move(QEvent::MouseMove, to, bar->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                             Qt::NoModifier);
            QApplication::sendEvent(bar, &move);
            view->viewport()->repaint();
        }
        QTest::mouseRelease(bar, Qt::LeftButton, Qt::NoModifier, QPoint(start.x(), bar->height() - 1));
        if (bar->value() != bar->maximum()) state.SkipWithError("the drag did not reach the end");
    }
    bar->setValue(0);
}
BENCHMARK(BM_LargeProjectScrollBarDrag)->Unit(benchmark::kMillisecond)->Iterations(3);

// A click on a column's heading (the question answered yes): the rows sorted by that column,
// then (not timed) back to their own order by the first column. Column 1 itself is timed as
// the way back from the order of column 2. Arguments: the list (0 quantities, 1 requirements)
// and the column.
void BM_LargeProjectSortColumn(benchmark::State& state) {
    LargeProject& p = large();
    lists::ListView* view = p.f2->ListView1[static_cast<int>(state.range(0))];
    const int column = static_cast<int>(state.range(1));
    lists::ListEditor* editor = lists::ListEditor::of(view);
    for (auto _ : state) {
        if (column == 1) {
            state.PauseTiming();
            editor->SortItems(2);
            QApplication::processEvents();
            state.ResumeTiming();
        }
        emit view->headerClicked(column);
        QApplication::processEvents();
        view->viewport()->repaint();
        state.PauseTiming();
        editor->SortItems(1);
        QApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_LargeProjectSortColumn)
    ->ArgsProduct({{0}, {1, 2, 3, 4, 5, 6, 7}})
    ->ArgsProduct({{1}, {1, 2, 3, 4, 6, 11, 21, 24}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// "Tallenna nimellä..." to another name and back again.
void BM_LargeProjectSaveAs(benchmark::State& state) {
    LargeProject& p = large();
    p.main.activateWindow(p.f2);
    const QString other = p.dir.filePath(QStringLiteral("uusi nimi.sl"));
    int n = 0;
    for (auto _ : state) {
        p.dialogs.nextFile = n++ % 2 == 0 ? other : p.file;
        p.main.FileMenuActions(3);
        QApplication::processEvents();
    }
    p.dialogs.nextFile.clear();
    if (p.main.ActiveCaption().contains(QStringLiteral("uusi nimi"))) {
        p.dialogs.nextFile = p.file;
        p.main.FileMenuActions(3);
        p.dialogs.nextFile.clear();
    }
}
BENCHMARK(BM_LargeProjectSaveAs)->Unit(benchmark::kMillisecond)->Iterations(2);

// The program mode from the menu: designer, contractor, client, each applied to every window.
void BM_LargeProjectModeChange(benchmark::State& state) {
    LargeProject& p = large();
    int mode = 0;
    for (auto _ : state) {
        mode = (mode + 1) % 3;
        p.main.Submenu10Click(mode);
        QApplication::processEvents();
    }
    p.main.Submenu10Click(0);
}
BENCHMARK(BM_LargeProjectModeChange)->Unit(benchmark::kMillisecond)->Iterations(6);

} // namespace

// tamrik_bench --open-sort-save FILE: what a user does with a large project, in one process
// whose peak memory can be measured: the project opened in the windows as "Avaa..." opens it,
// both lists sorted by their second column and back, saved under another name beside it.
int OpenSortSave(const QString& file) {
    YesDialogs dialogs;
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", (config.path() + QStringLiteral("/config")).toLocal8Bit());
    shell::MDIForm1 main;
    main.setProgramDirectory(QStringLiteral(TAMRIK_SOURCE_DIR) + QStringLiteral("/data/"));
    main.startUp(false);
    main.appState().settings.SaveSettingsOnExit = false;
    main.show();
    QApplication::processEvents();
    if (file.isEmpty()) return 0; // the base: the program started, no project
    main.openFromCommandLine(file);
    QApplication::processEvents();
    const shell::ProjectWindows w = main.projectWindowsOf(file);
    if (!w.complete()) return 1;
    for (lists::ListView* view : w.f2->ListView1) {
        lists::ListEditor::of(view)->SortItems(2);
        QApplication::processEvents();
        lists::ListEditor::of(view)->SortItems(1);
        QApplication::processEvents();
    }
    const QString saved = file + QStringLiteral(".tallennettu.sl");
    const bool ok =
        shell::WriteSlFile(main, shell::ParseFileName(main.ActiveCaption()).project(), saved, false);
    QFile::remove(saved);
    for (auto* window : main.projectWindows())
        main.FormUntouch(window);
    return ok ? 0 : 1;
}
