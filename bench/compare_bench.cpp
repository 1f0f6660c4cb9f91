// Comparing two versions of a large project: `tamrik compare` as a whole process (start, read
// both files, compare, write the JSON), and the comparison alone. Target: two versions of
// 20,000 requirement rows and 5,000 quantity rows with 1,000 changes in at most 0.3 s for the
// whole process; the memory the process takes grows with the rows, no faster.
#include "BenchLists.h"
#include "calc/ProjectCompare.h"
#include "lists/ListModel.h"
#include "persist/ProjectFile.h"
#include "persist/ProjectText.h"
#include "persist/SlContainer.h"
#include "platform/TextFile.h"
#include "print/Comparison.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

extern char** environ;

namespace {

persist::ListRecord recordOf(const lists::ListModel& list) {
    persist::ListRecord record;
    record.columns = list.cols() - 1;
    record.rows.reserve(list.rows());
    for (int r = 1; r <= list.rows(); ++r)
        record.rows.push_back(list.row(r).cells);
    record.rows.back().resize(record.columns);
    return record;
}

// A project of `requirements` requirement rows and `quantities` quantity rows, and a later
// version of it with `changes` changes: new quantities and prices, rows removed and added,
// requirement marks and weights.
struct Versions {
    QTemporaryDir dir;
    QString older = dir.filePath(QStringLiteral("vanha.sl"));
    QString newer = dir.filePath(QStringLiteral("uusi.sl"));
    persist::ProjectFile oldProject, newProject;

    Versions(int requirements, int quantities, int changes) {
        lists::ListModel q, r;
        bench_lists::fillQuantityList(q, quantities);
        bench_lists::fillRequirementList(r, requirements);
        persist::ProjectFile project;
        project.content.windows[0].combos = QStringList(18);
        project.content.windows[0].combos[3] = QStringLiteral("100");
        project.content.windows[0].combos[10] = QStringLiteral("112,5");
        project.content.windows[1].lists = {recordOf(q), recordOf(r)};
        oldProject = project;
        write(project, older);

        auto& qRows = project.content.windows[1].lists[0].rows;
        auto& rRows = project.content.windows[1].lists[1].rows;
        std::vector<lists::RowCells> keptQuantities;
        const int step = std::max(1, (quantities + requirements) / changes);
        int done = 0;
        for (int i = 0; i < static_cast<int>(rRows.size()) && done < changes / 2; i += step / 2 + 1) {
            lists::RowCells& row = rRows[i];
            if (row[1].isEmpty()) continue;
            row.set(20, row[20] == QLatin1String("Ei") ? QStringLiteral("Kyllä") : QStringLiteral("Ei"));
            row.set(10, u"5");
            ++done;
        }
        for (int i = 0; i < static_cast<int>(qRows.size()); ++i) {
            lists::RowCells row = qRows[i];
            const bool priced = !row.value(3).isEmpty();
            if (priced && done < changes && i % 5 == 0) {
                ++done;
                switch (done % 3) {
                    case 0:
                        continue; // removed
                    case 1:
                        row.set(3, u"99,5");
                        row.set(5, u"1 300,00");
                        break;
                    default:
                        keptQuantities.push_back(row);
                        row.set(1, u"Lisätty työ");
                        break;
                }
            }
            keptQuantities.push_back(row);
        }
        qRows = std::move(keptQuantities);
        newProject = project;
        write(project, newer);
    }

    static void write(persist::ProjectFile& project, const QString& path) {
        project.members[0].data = persist::WriteProjectText(project.content, false);
        platform::writeFileAtomically(path, persist::PackContainer(project.members));
    }
};

// Runs the program to its end: the wall time and the processor time in seconds, and the
// largest resident set in KiB.
bool runProcess(const QStringList& args, double& seconds, double& cpuSeconds, long& maxRssKib) {
    std::vector<QByteArray> bytes;
    for (const QString& a : args)
        bytes.push_back(a.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& b : bytes)
        argv.push_back(b.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    const auto start = std::chrono::steady_clock::now();
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) return false;
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) != pid) return false;
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    maxRssKib = usage.ru_maxrss;
    auto toSeconds = [](const timeval& t) { return static_cast<double>(t.tv_sec) + t.tv_usec / 1e6; };
    cpuSeconds = toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
    return WIFEXITED(status) && WEXITSTATUS(status) == 4;
}

// range(0): the size, 1 for 20,000 + 5,000 rows, 2 for twice that (the memory per row level).
void BM_CompareProcess(benchmark::State& state) {
    const int scale = static_cast<int>(state.range(0));
    Versions v(20000 * scale, 5000 * scale, 1000);
    const QString program = QCoreApplication::applicationDirPath() + QStringLiteral("/../tamrik");
    long rss = 0;
    double cpu = 0;
    for (auto _ : state) {
        double seconds = 0, cpuSeconds = 0;
        if (!runProcess({program, QStringLiteral("compare"), v.older, v.newer, QStringLiteral("--json")},
                        seconds, cpuSeconds, rss)) {
            state.SkipWithError("tamrik compare did not report the versions as different");
            return;
        }
        state.SetIterationTime(seconds);
        cpu += cpuSeconds;
    }
    // On a busy machine the wall time waits for the processor; the processor time does not.
    state.counters["cpu_ms"] = 1000 * cpu / static_cast<double>(state.iterations());
    state.counters["maxrss_MiB"] = static_cast<double>(rss) / 1024;
    state.counters["rows"] = 25000.0 * scale;
}
BENCHMARK(BM_CompareProcess)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

// The comparison alone, the versions already read.
void BM_CompareProjects(benchmark::State& state) {
    Versions v(20000, 5000, 1000);
    const calc::ProjectVersion a = print::VersionFromProject(v.oldProject, v.older);
    const calc::ProjectVersion b = print::VersionFromProject(v.newProject, v.newer);
    std::size_t changes = 0;
    for (auto _ : state) {
        const calc::ProjectComparison c = calc::CompareProjects(a, b);
        changes = c.rows.size();
        benchmark::DoNotOptimize(changes);
    }
    state.counters["changed_rows"] = static_cast<double>(changes);
}
BENCHMARK(BM_CompareProjects)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
