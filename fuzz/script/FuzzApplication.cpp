#include "fuzz/script/FuzzApplication.h"

#include "service/launcher/CLILauncher.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <glog/logging.h>

namespace EditorService::Fuzzing {

void startApplication() {
    static int argc = 1;
    static char name[] = "reelsmith-fuzz";
    static char* argv[] = {name, nullptr};
    static bool started = false;
    if (started)
        return;
    started = true;
    FLAGS_logtostderr = true;
    FLAGS_minloglevel = google::GLOG_ERROR;
    google::InitGoogleLogging(name);
    static QCoreApplication application(argc, argv);
    static CLILauncher launcher;
}

const QString& applicationPath() {
    static const QString path = CLILauncher::instance()->commandLineArguments().first();
    return path;
}

void spinUntil(bool (*done)(void*), void* context) {
    while (!done(context)) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents();
    }
}

} // namespace EditorService::Fuzzing
