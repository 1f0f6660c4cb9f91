// Benchmarks of the program: run with ./tamrik bench.
#include <QApplication>
#include <QLocale>
#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    // Window benchmarks (opening and saving projects) run on the offscreen platform.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
