#include "host/SignalWatcher.h"

#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

void writeSignal(int signal) {
    const unsigned char number = static_cast<unsigned char>(signal);
    [[maybe_unused]] const auto written = ::write(signalPipe[1], &number, 1);
}

} // namespace

SignalWatcher::SignalWatcher(std::function<void(int)> received)
    : m_received(std::move(received)) {
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SignalWatcher::readSignal);
    struct sigaction action = {};
    action.sa_handler = writeSignal;
    // Neither handler may interrupt the other, so the pipe holds the signals in their order.
    sigemptyset(&action.sa_mask);
    sigaddset(&action.sa_mask, SIGINT);
    sigaddset(&action.sa_mask, SIGTERM);
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// The handlers stay installed to the end of the process: they only write to the pipe, so a
// signal that comes while the host shuts down changes nothing, where the default would kill it.
SignalWatcher::~SignalWatcher() = default;

void SignalWatcher::readSignal() {
    unsigned char number = 0;
    while (::read(signalPipe[0], &number, 1) == 1)
        m_received(number);
}
