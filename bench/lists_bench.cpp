// Benchmarks of the list procedures and list files on lists of 5,000 to 100,000 rows. Each is
// run at four sizes and reports its complexity: the work must grow linearly with the rows.
#include "BenchLists.h"
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "lists/Spreadsheet.h"
#include "lists/spreadsheet/SheetData.h"
#include "platform/Cp1252.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

using namespace lists;
using bench_lists::makeQuantityList;

namespace {

// A generated list of state.range(0) rows and a file name for it in a temporary folder.
struct BenchList {
    QTemporaryDir dir;
    ListModel list;
    QString path;
    BenchList(const benchmark::State& state, const QString& fileName)
        : path(dir.filePath(fileName)) {
        makeQuantityList(list, static_cast<int>(state.range(0)));
    }
};

void sizes(benchmark::internal::Benchmark* b) {
    bench_lists::linearSizes(b, {5000, 10000, 20000, 100000});
}

void BM_InitListView(benchmark::State& state) {
    BenchList b(state, "luettelo.sl1");
    SaveListView(b.list, b.path);
    for (auto _ : state) {
        ListModel read;
        benchmark::DoNotOptimize(InitListView(read, b.path, ";"));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_InitListView)->Apply(sizes);

void BM_SaveListView(benchmark::State& state) {
    BenchList b(state, "luettelo.sl1");
    for (auto _ : state)
        benchmark::DoNotOptimize(SaveListView(b.list, b.path));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SaveListView)->Apply(sizes);

void BM_FindCaptionFromEveryRow(benchmark::State& state) {
    ListModel list;
    makeQuantityList(list, static_cast<int>(state.range(0)));
    for (auto _ : state)
        for (int r = 1; r <= list.rows(); ++r)
            benchmark::DoNotOptimize(FindCaption(list, r));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_FindCaptionFromEveryRow)->Apply(sizes);

void BM_FormatListView(benchmark::State& state) {
    ListModel list;
    makeQuantityList(list, static_cast<int>(state.range(0)));
    const std::vector<Row> unformatted = list.allRows();
    for (auto _ : state) {
        state.PauseTiming();
        list.replaceRows(unformatted);
        state.ResumeTiming();
        benchmark::DoNotOptimize(FormatListView(list, 1, 0, {1, 1, 1, 1, 1, 1}));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_FormatListView)->Apply(sizes);

void BM_InsertRowsInMiddle(benchmark::State& state) {
    // A 200-row block copied into the middle of the list, numbered in one pass.
    ListModel list;
    makeQuantityList(list, static_cast<int>(state.range(0)));
    const std::vector<Row> original = list.allRows();
    const std::vector<Row> block(original.begin(), original.begin() + 200);
    for (auto _ : state) {
        state.PauseTiming();
        list.replaceRows(original);
        state.ResumeTiming();
        InsertListViewRows(list, list.rows() / 2, block, true);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_InsertRowsInMiddle)->Apply(sizes);

// The .xlsx is left beside the benchmark program (lists_bench_N.xlsx), for timing
// `tamrik convert` on it as a whole process.
void BM_ImportXlsx(benchmark::State& state) {
    ListModel list;
    makeQuantityList(list, static_cast<int>(state.range(0)));
    const QString path =
        QCoreApplication::applicationDirPath() + QStringLiteral("/lists_bench_%1.xlsx").arg(state.range(0));
    if (!ExportListViewXlsx(list, path)) {
        state.SkipWithError("the .xlsx could not be written beside the benchmark program");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(ImportListViewXls(list, path));
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ImportXlsx)->Apply(sizes);

// A sheet whose rows come last to first, as no known writer stores them but a damaged or made
// file may: as fast as rows in order.
void BM_SheetRowsInReverse(benchmark::State& state) {
    const int rows = static_cast<int>(state.range(0));
    const QString text = QStringLiteral("7100");
    for (auto _ : state) {
        sheet::SheetBuilder builder(7);
        for (int r = rows - 1; r >= 0; --r)
            for (int c = 0; c < 3; ++c)
                builder.setCell(r, c, text);
        benchmark::DoNotOptimize(builder.take());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_SheetRowsInReverse)->Apply(sizes);

// The export writes only .xlsx: the .xls is made once by LibreOffice beside the benchmark program.
QString xlsFixture(int rowCount, QString* why) {
    const QString dir = QCoreApplication::applicationDirPath();
    const QString xls = dir + QStringLiteral("/lists_bench_%1.xls").arg(rowCount);
    if (QFileInfo::exists(xls)) return xls;
    const QString soffice = QStandardPaths::findExecutable(QStringLiteral("soffice"));
    if (soffice.isEmpty()) {
        *why = QStringLiteral("LibreOffice (soffice) is not installed: no .xls to read");
        return {};
    }
    QTemporaryDir work;
    ListModel list;
    makeQuantityList(list, rowCount);
    const QString csv = work.filePath(QStringLiteral("lists_bench_%1.csv").arg(rowCount));
    {
        QFile f(csv);
        if (!f.open(QIODevice::WriteOnly)) return {};
        const QByteArray bytes = listFileBytes(list);
        f.write(platform::fromCp1252(bytes.constData(), bytes.size()).toUtf8());
    }
    QProcess lo;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), work.path());
    lo.setProcessEnvironment(env);
    lo.start(soffice,
             {QStringLiteral("-env:UserInstallation=file://") + work.path() + QStringLiteral("/profile"),
              QStringLiteral("--headless"), QStringLiteral("--infilter=CSV:59,34,76,1,,1035"),
              QStringLiteral("--convert-to"), QStringLiteral("xls"), QStringLiteral("--outdir"), dir, csv});
    lo.waitForFinished(300000);
    if (!QFileInfo::exists(xls)) {
        *why = QStringLiteral("LibreOffice did not write ") + xls;
        return {};
    }
    return xls;
}

void BM_ImportXls(benchmark::State& state) {
    QString why;
    const QString path = xlsFixture(static_cast<int>(state.range(0)), &why);
    if (path.isEmpty()) {
        state.SkipWithError(why.toStdString().c_str());
        return;
    }
    ListModel list;
    makeQuantityList(list, 1);
    for (auto _ : state)
        benchmark::DoNotOptimize(ImportListViewXls(list, path));
    // The first row holds the list's headers, so it is not a row of the list.
    if (list.rows() != state.range(0)) state.SkipWithError("the .xls did not give every row back");
}
// An .xls sheet holds at most 65,536 rows: one size only.
BENCHMARK(BM_ImportXls)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace
