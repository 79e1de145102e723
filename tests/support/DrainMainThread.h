#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QObject>

namespace EditorService::Testing {

// Counts the events that reach objects of the main thread; an application-wide filter sees
// every one of them before its receiver does.
class MainThreadEventCounter : public QObject {
public:
    MainThreadEventCounter() { QCoreApplication::instance()->installEventFilter(this); }
    ~MainThreadEventCounter() override { QCoreApplication::instance()->removeEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent*) override {
        ++count;
        return false;
    }
};

// Runs, on the main thread that calls it, every event queued for it, then whatever those queue
// in turn, until a round finds nothing queued; returns how many events ran. The main thread's
// coordination (RxApp::mainThread()) keeps one posted event for as long as it has work that is
// due, so when this returns no such work is left: a test can then assert what must not have
// happened, with no waiting in real time. Work queued by other threads counts only once they
// have queued it (join them first). Timed work that is not due yet is not waited for.
inline int drainMainThread() {
    MainThreadEventCounter counter;
    int total = 0;
    for (;;) {
        counter.count = 0;
        // Qt sends only the events posted before the call: the loop picks up the rest.
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QCoreApplication::sendPostedEvents();
        if (counter.count == 0)
            return total;
        total += counter.count;
    }
}

} // namespace EditorService::Testing
