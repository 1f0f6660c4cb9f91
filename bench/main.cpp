// Benchmarks of the program: run with ./tamrik bench.
#include "platform/Allocator.h"

#include <QApplication>
#include <QLocale>
#include <benchmark/benchmark.h>
#include <cstring>

bool WritePrintProject(const QString& file, int rows);
bool WritePrintRows(const QString& file, int rows);
int OpenSortSave(const QString& file);

int main(int argc, char** argv) {
    // As the program does at start-up, so that printing is measured as it runs there.
    platform::keepLargeBuffersInHeap();
    // Window benchmarks (opening and saving projects) run on the offscreen platform.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    // tamrik_bench --print-project FILE: writes the project that bench/print-time prints.
    if (argc == 3 && std::strcmp(argv[1], "--print-project") == 0)
        return WritePrintProject(QString::fromLocal8Bit(argv[2]), 20000) ? 0 : 1;
    // tamrik_bench --print-rows FILE.csv: the same list's rows, for LibreOffice to print.
    if (argc == 3 && std::strcmp(argv[1], "--print-rows") == 0)
        return WritePrintRows(QString::fromLocal8Bit(argv[2]), 20000) ? 0 : 1;
    // tamrik_bench --open-sort-save [FILE]: a large project opened, sorted and saved, for
    // measuring the peak memory of the cycle; without FILE only the started program.
    if ((argc == 2 || argc == 3) && std::strcmp(argv[1], "--open-sort-save") == 0)
        return OpenSortSave(argc == 3 ? QString::fromLocal8Bit(argv[2]) : QString());
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
