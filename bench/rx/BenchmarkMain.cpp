#include <QCoreApplication>

#include <benchmark/benchmark.h>

// The main-thread benchmarks need the Qt event loop's thread, as the host has it.
int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
