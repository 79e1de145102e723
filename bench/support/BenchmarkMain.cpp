#include "service/launcher/CLILauncher.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <glog/logging.h>

// The surroundings of the console host: a Qt core application whose event loop is the main
// thread's, one CLILauncher for the command sources, and glog writing to stderr, which the
// caller points at the sink it wants to measure (bench/compare: /dev/null or a file).
int main(int argc, char** argv) {
    FLAGS_logtostderr = true;
    google::InitGoogleLogging(argv[0]);
    QCoreApplication application(argc, argv);
    CLILauncher launcher;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
