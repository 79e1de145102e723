#pragma once

#include <QObject>
#include <functional>

class QSocketNotifier;

// Turns SIGINT and SIGTERM into a call on the main thread's event loop, where the host can
// stop its stream and flush what was produced. A signal handler may do almost nothing, so it
// only writes the signal's number to a pipe that the event loop watches.
class SignalWatcher : public QObject {
    Q_OBJECT
public:
    explicit SignalWatcher(std::function<void(int signal)> received);
    ~SignalWatcher() override;

private:
    void readSignal();

    std::function<void(int)> m_received;
    QSocketNotifier* m_notifier = nullptr;
};
