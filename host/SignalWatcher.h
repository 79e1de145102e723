#pragma once

#include <QObject>
#include <functional>

class QSocketNotifier;

// Turns SIGINT and SIGTERM into a call on the main thread's event loop, where the host can
// stop its stream and flush what was produced. The signals are blocked in every thread and
// read from a signalfd, so no thread is interrupted, and signals that come together are seen
// one after the other, on one thread, in the order the kernel keeps them.
class SignalWatcher : public QObject {
    Q_OBJECT
public:
    // Blocks the watched signals in the calling thread and so in every thread it starts later.
    // The process calls it first thing, before any thread exists.
    static void blockWatchedSignals();

    // Throws std::system_error when the signalfd can't be made.
    explicit SignalWatcher(std::function<void(int signal)> received);
    ~SignalWatcher() override;

private:
    void readSignals();

    std::function<void(int)> received;
    int descriptor = -1;
    QSocketNotifier* notifier = nullptr;
};
