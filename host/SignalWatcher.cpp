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
    : m_received(std::move(received)) {
    blockWatchedSignals();
    const sigset_t watched = watchedSignals();
    m_descriptor = ::signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "signalfd");
    m_notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SignalWatcher::readSignals);
}

// The signals stay blocked to the end of the process, so one that comes while the host shuts
// down changes nothing, where the default action would kill it.
SignalWatcher::~SignalWatcher() {
    delete m_notifier;
    ::close(m_descriptor);
}

void SignalWatcher::readSignals() {
    signalfd_siginfo info;
    while (::read(m_descriptor, &info, sizeof info) == ssize_t(sizeof info))
        m_received(int(info.ssi_signo));
}
