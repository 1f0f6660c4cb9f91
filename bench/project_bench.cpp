// Opening and saving a large project through the windows, as the File menu does.
#include "documents/Form2.h"
#include "lists/ListModel.h"
#include "platform/SettingsStore.h"
#include "shell/MDIForm1.h"
#include "shell/Captions.h"
#include "shell/ProjectFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

// A project with `requirements` requirement rows and `quantities` quantity rows, in the
// shape of real lists: captions, entries and blank rows.
void fillLists(documents::Form2& f2, int requirements, int quantities) {
    auto fill = [](lists::ListModel& list, int n, bool requirementsList) {
        std::vector<lists::Row> rows;
        rows.reserve(n);
        for (int i = 0; i < n; ++i) {
            QStringList cells(list.cols(), QString());
            if (i % 25 == 0) {
                cells[0] = QString::number(7110 + (i / 25) % 80);
                cells[requirementsList ? 2 : 1] = QStringLiteral("BETONITYÖT");
            } else if (requirementsList) {
                cells[1] = QString::number(i % 25);
                cells[2] = QStringLiteral(
                    "Betonin lujuusluokka vähintään C35/45, kelpoisuus osoitetaan koekappalein");
                cells[3] = QStringLiteral("1");
                cells[4] = QStringLiteral("SILKO 1.301");
                cells[5] = QStringLiteral("35");
                cells[8] = QStringLiteral("MPa");
                cells[9] = QStringLiteral("M");
                cells[10] = QStringLiteral("3");
                cells[11] =
                    QStringLiteral("Urakoitsija toimittaa koetulokset valvojalle ennen muottien purkua.");
                cells[20] = i % 3 ? QStringLiteral("Kyllä") : QString();
                cells[23] = QStringLiteral("0,5");
            } else {
                cells[1] = QStringLiteral("Betonointi, perustukset");
                cells[2] = QStringLiteral("100");
                cells[3] = QString::number(i % 300 + 1);
                cells[4] = QStringLiteral("m3");
                cells[5] = QStringLiteral("185,50");
            }
            cells[list.cols() - 1] = lists::formatRowNumber(i + 1);
            lists::Row row;
            row.cells = cells;
            rows.push_back(std::move(row));
        }
        list.reset(list.columns(), std::move(rows));
    };
    fill(*f2.list(0), quantities, false);
    fill(*f2.list(1), requirements, true);
}

struct Fixture {
    explicit Fixture(int quantities = 20000, int requirements = 5000) {
        qputenv("XDG_CONFIG_HOME", (dir.path() + QStringLiteral("/config")).toLocal8Bit());
        main.setProgramDirectory(QStringLiteral(TAMRIK_SOURCE_DIR) + QStringLiteral("/data/"));
        main.startUp(false);
        main.appState().settings.SaveSettingsOnExit = false;
        fillLists(*main.ParseFormIndeces().f2, requirements, quantities);
        file = dir.filePath(QStringLiteral("suuri.sl"));
    }
    QTemporaryDir dir;
    shell::MDIForm1 main;
    QString file;
};

void BM_SaveLargeProject(benchmark::State& state) {
    Fixture f;
    for (auto _ : state) {
        const bool ok =
            shell::WriteSlFile(f.main, shell::ParseFileName(f.main.ActiveCaption()).project(), f.file, true);
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_SaveLargeProject)->Unit(benchmark::kMillisecond)->Iterations(5);

// 20,000 quantity and 5,000 requirement rows, the target size; 80,000 and 20,000, the largest.
void BM_OpenLargeProject(benchmark::State& state) {
    Fixture f(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    shell::WriteSlFile(f.main, shell::ParseFileName(f.main.ActiveCaption()).project(), f.file, false);
    // The same project beside the benchmark, for measuring the command line and the desktop
    // program on it: large-project.sl at the target size, large-project-100000.sl.
    const qint64 rows = state.range(0) + state.range(1);
    const QString copy = QCoreApplication::applicationDirPath() +
                         (rows == 25000 ? QStringLiteral("/large-project.sl")
                                        : QStringLiteral("/large-project-%1.sl").arg(rows));
    QFile::remove(copy);
    QFile::copy(f.file, copy);
    for (auto _ : state) {
        const bool ok = shell::ReadSlFile(f.main, f.file, f.file, false);
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_OpenLargeProject)
    ->Args({20000, 5000})
    ->Args({80000, 20000})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

} // namespace
