#include "host/ConsoleHost.h"
#include "host/ExitStatus.h"
#include "host/SignalWatcher.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <glog/logging.h>

int main(int argc, char** argv) {
    // Before any thread starts, so that every thread inherits the block and SIGINT and SIGTERM
    // reach only the host's signalfd.
    SignalWatcher::blockWatchedSignals();
    // glog stamps each line with the local time through mktime, and glibc, with TZ unset, checks
    // /etc/localtime anew on every call: one stat per line of a script. Naming that same file
    // once spares it; a TZ of the caller's own stands.
    setenv("TZ", ":/etc/localtime", 0);
    FLAGS_logtostderr = true;
    google::InitGoogleLogging(argv[0]);
    // A closed stdout shows as a failed write, which ends the host quietly.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        ConsoleHost host(argc, argv);
        return host.exec();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return ExitStatus::Failure;
    }
}
