#include "platform/av/MediaLibraries.h"

#include <QCoreApplication>
#include <glog/logging.h>
#include <gmock/gmock.h>

// A program that links the media stages has the media libraries open before anything else, as
// one whose engine has started: some tests name pixel formats as their parameters, which are made
// before main.
__attribute__((constructor(101))) static void openMediaLibraries() {
    Velmor::AV::openMediaLibrariesIfLinked(VELMOR_MEDIA_MODULE);
}

// Every test process is a Qt application, as the host is: the main thread runs the event loop
// that RxApp::mainThread() and queued signals depend on.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    FLAGS_logtostderr = true;
    google::InitGoogleLogging(argv[0]);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
