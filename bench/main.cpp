// Benchmarks of the program's model code: run with ./tamrik bench.
#include <QCoreApplication>
#include <QLocale>
#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
