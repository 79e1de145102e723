#include "platform/av/MediaLibraries.h"

#include <QCoreApplication>
#include <glog/logging.h>
#include <gmock/gmock.h>

// Every test process is a Qt application, as the host is: the main thread runs the event loop
// that RxApp::mainThread() and queued signals depend on. One that links the media stages has the
// media libraries open from the start, as a program whose engine has started.
int main(int argc, char** argv) {
    Velmor::AV::openMediaLibrariesIfLinked(VELMOR_MEDIA_MODULE);
    testing::InitGoogleMock(&argc, argv);
    FLAGS_logtostderr = true;
    google::InitGoogleLogging(argv[0]);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
