#include <QCoreApplication>
#include <glog/logging.h>
#include <gmock/gmock.h>

// Every test process is a Qt application, as the host is: the main thread runs the event loop
// that RxApp::mainThread() and queued signals depend on.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    FLAGS_logtostderr = true;
    google::InitGoogleLogging(argv[0]);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
