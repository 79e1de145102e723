#include "platform/av/MediaLibraries.h"
#include "service/launcher/CLILauncher.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <glog/logging.h>

// The surroundings of the console host (host/main.cpp): a Qt core application whose event loop
// is the main thread's, one CLILauncher for the command sources, the time zone named once for
// glog's time stamps, and glog writing to stderr, which the caller points at the sink it wants
// to measure (bench/compare: /dev/null or a file). The media libraries are open from the start when
// the benchmarks link the media stages, as in a program whose engine has started.
int main(int argc, char** argv) {
    Velmor::AV::openMediaLibrariesIfLinked(VELMOR_MEDIA_MODULE);
    setenv("TZ", ":/etc/localtime", 0);
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
