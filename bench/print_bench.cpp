// Printing a long quantity list: pagination alone, and pagination with the PDF of the quantity
// list and the cost estimate. Pagination runs the real layout of every row, so it must stay
// linear in the rows.
#include "lists/ListFiles.h"
#include "lists/ListModel.h"
#include "lists/ListProcedures.h"
#include "persist/ProjectFile.h"
#include "persist/ProjectText.h"
#include "persist/SlContainer.h"
#include "print/PdfOutput.h"
#include "print/PrintRun.h"

#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

// The cells (7 columns) of a quantity list of `n` rows made from the shipped unit price list:
// its captions and priced entries with their real descriptions and remarks, repeated, with
// quantities and blank rows as a project has them, and the road works in the last quarter.
std::vector<QStringList> quantityRows(int n) {
    lists::ListFileContent prices;
    lists::ReadListFile(QStringLiteral(TAMRIK_SOURCE_DIR "/data/Yksikköhinnat2002.sl1"), QStringLiteral(";"),
                        prices);
    std::vector<QStringList> rows;
    rows.reserve(n);
    auto add = [&](QStringList cells) {
        cells.resize(7);
        rows.push_back(cells);
    };
    bool roadWorks = false;
    for (int i = 0; static_cast<int>(rows.size()) < n; ++i) {
        if (!roadWorks && static_cast<int>(rows.size()) >= n * 3 / 4) {
            add({});
            add({QString(), lists::kRoadWorksCaption});
            roadWorks = true;
        }
        const QStringList p = prices.rows[i % prices.rows.size()].cells.toStringList();
        const bool priced = !p.value(4).isEmpty();
        if (!priced && !p.value(0).isEmpty()) add({});
        add({p.value(0), p.value(1), priced ? QStringLiteral("100") : QString(),
             priced ? QString::number(1 + i % 400) : QString(), p.value(2), p.value(4), p.value(6)});
    }
    rows.resize(n);
    return rows;
}

void makeQuantities(lists::ListModel& list, int n) {
    std::vector<lists::Row> rows;
    for (QStringList& cells : quantityRows(n)) {
        cells.append(lists::formatRowNumber(static_cast<long long>(rows.size()) + 1));
        rows.push_back({std::move(cells), {}, false});
    }
    std::vector<lists::Column> columns(7, lists::Column{QStringLiteral("SARAKE"), 1000});
    columns.push_back({QStringLiteral("Rivi"), 0});
    list.setKind(lists::kind::QuantityList);
    list.reset(std::move(columns), std::move(rows));
}

struct Project {
    explicit Project(int rows) {
        makeQuantities(quantities, rows);
        source.quantities = &quantities;
        source.basicTexts = {QStringLiteral("Kirkkojoen silta"), QStringLiteral("Vt 4, tieosa 215")};
        source.basicCombos = QStringList(18, QString());
        source.basicCombos[3] = QStringLiteral("104");
        source.basicCombos[4] = QStringLiteral("€");
        source.basicCombos[10] = QStringLiteral("127");
        source.basicCombos[11] = QStringLiteral("25");
        source.basicCombos[12] = QStringLiteral("22");
        selection.DocumentSelected[print::doc::Quantities] = true;
        selection.DocumentSelected[print::doc::Costs] = true;
    }
    lists::ListModel quantities;
    print::PrintSource source;
    print::Selection selection;
};

void BM_Paginate(benchmark::State& state) {
    Project project(static_cast<int>(state.range(0)));
    int pages = 0;
    for (auto _ : state) {
        project.selection.PaginationStale = true;
        print::PrintRun run(project.source, project.selection, print::PrintSettings{});
        run.PageCount();
        pages = run.TotalPages();
    }
    state.counters["pages"] = pages;
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_Paginate)
    ->RangeMultiplier(2)
    ->Range(5000, 40000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

void BM_PaginateAndPrintPdf(benchmark::State& state) {
    Project project(static_cast<int>(state.range(0)));
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("maaraluettelo.pdf"));
    int pages = 0;
    for (auto _ : state) {
        project.selection.PaginationStale = true;
        print::PrintRun run(project.source, project.selection, print::PrintSettings{});
        print::WritePdf(run, file, print::DefaultPageLayout(), print::kDefaultResolution);
        pages = run.TotalPages();
    }
    state.counters["pages"] = pages;
    state.counters["pages/s"] = benchmark::Counter(pages, benchmark::Counter::kIsIterationInvariantRate);
}
// Two threads draw a long run: the CPU column counts both, and pages/s is by the wall clock.
BENCHMARK(BM_PaginateAndPrintPdf)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

} // namespace

// The sample project with a quantity list of `rows` rows, for timing `tamrik print` as a whole
// process (bench/print-time).
bool WritePrintProject(const QString& file, int rows) {
    persist::ProjectFile project;
    if (!persist::ReadProjectFile(QStringLiteral(TAMRIK_SOURCE_DIR "/data/Esimerkkisilta.sl"), false, project,
                                  nullptr))
        return false;
    persist::ListRecord& list = project.content.windows[1].lists[0];
    list.rows.clear();
    for (const QStringList& row : quantityRows(rows))
        list.rows.emplace_back(row);
    project.members[0].data = persist::WriteProjectText(project.content, false);
    QFile out(file);
    return out.open(QIODevice::WriteOnly) && out.write(persist::PackContainer(project.members)) > 0;
}

// The same rows as a semicolon-separated UTF-8 file, for timing LibreOffice printing them
// (bench/print-time).
bool WritePrintRows(const QString& file, int rows) {
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly)) return false;
    for (const QStringList& cells : quantityRows(rows))
        if (out.write((cells.mid(0, 7).join(QLatin1Char(';')) + QLatin1Char('\n')).toUtf8()) < 0)
            return false;
    return true;
}
