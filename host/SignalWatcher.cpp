#include "host/SignalWatcher.h"

#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <pthread.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace {

sigset_t watchedSignals() {
    sigset_t watched;
    sigemptyset(&watched);
    sigaddset(&watched, SIGINT);
    sigaddset(&watched, SIGTERM);
    return watched;
}

} // namespace

void SignalWatcher::blockWatchedSignals() {
    const sigset_t watched = watchedSignals();
    pthread_sigmask(SIG_BLOCK, &watched, nullptr);
}

SignalWatcher::SignalWatcher(std::function<void(int)> received)
    : received(std::move(received)) {
    blockWatchedSignals();
    const sigset_t watched = watchedSignals();
    descriptor = ::signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "signalfd");
    notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &SignalWatcher::readSignals);
}

// The signals stay blocked to the end of the process, so one that comes while the host shuts
// down changes nothing, where the default action would kill it.
SignalWatcher::~SignalWatcher() {
    delete notifier;
    ::close(descriptor);
}

void SignalWatcher::readSignals() {
    signalfd_siginfo info;
    while (::read(descriptor, &info, sizeof info) == ssize_t(sizeof info))
        received(int(info.ssi_signo));
}
