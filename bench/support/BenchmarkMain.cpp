#include "platform/av/MediaLibraries.h"
#include "service/launcher/CLILauncher.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <cstdlib>
#include <glog/logging.h>

// A benchmark that links the media stages has the media libraries open before anything else, as a
// program whose engine has started.
__attribute__((constructor(101))) static void openMediaLibraries() {
    Velmor::AV::openMediaLibrariesIfLinked(VELMOR_MEDIA_MODULE);
}

// The surroundings of the console host (host/main.cpp): a Qt core application whose event loop
// is the main thread's, one CLILauncher for the command sources, the time zone named once for
// glog's time stamps, and glog writing to stderr, which the caller points at the sink it wants
// to measure (bench/compare: /dev/null or a file).
int main(int argc, char** argv) {
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
