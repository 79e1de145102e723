#include "platform/rxapp/MainThreadScheduler.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimerEvent>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <vector>

namespace Velmor::rx {
namespace {

using Clock = std::chrono::steady_clock;
using rxcpp::schedulers::schedulable;

class ActionQueue;
ActionQueue& actionQueue();

// Lives on the main thread. It carries no data: the queue is ours, behind our own mutex, so a
// thread sanitizer sees every hand-over; Qt only tells the main thread to look.
class Waker : public QObject {
public:
    void arm(Clock::time_point deadline);

protected:
    void customEvent(QEvent*) override;
    void timerEvent(QTimerEvent*) override;

private:
    int timerId = 0;
};

class ActionQueue {
public:
    ActionQueue() {
        auto* application = QCoreApplication::instance();
        if (!application)
            throw std::logic_error("RxApp needs a live QCoreApplication");
        waker = new Waker;
        waker->moveToThread(application->thread());
    }

    void push(Clock::time_point when, const schedulable& what, bool timed) {
        QEvent* wake = nullptr;
        {
            std::lock_guard<std::mutex> guard(lock);
            bool post = true;
            if (timed) {
                due.push_back(Item{when, nextOrder++, what});
                std::push_heap(due.begin(), due.end(), later);
                post = when < armedFor;
            } else {
                ready.push_back(Item{Clock::now(), nextOrder++, what});
            }
            // One wake-up serves every action queued until the main thread takes it. It is made
            // under the lock: Qt hands it over under a lock of its own that a thread sanitizer
            // can't see, and the drain takes this lock before Qt deletes the event.
            if (post && !wakePosted) {
                wakePosted = true;
                wake = new QEvent(wakeEventType());
            }
        }
        if (wake)
            QCoreApplication::postEvent(waker, wake);
    }

    // Runs, on the main thread, the actions that are due and were queued before it began;
    // later ones get a turn of their own, so other events are not starved.
    void drain() noexcept {
        std::uint64_t end = 0;
        {
            std::lock_guard<std::mutex> guard(lock);
            wakePosted = false;
            end = nextOrder;
        }
        while (auto item = takeNext(end))
            item->what();
        rearm();
    }

    void timerFired() {
        {
            std::lock_guard<std::mutex> guard(lock);
            armedFor = Clock::time_point::max();
        }
        drain();
    }

private:
    struct Item {
        Clock::time_point when;
        std::uint64_t order;
        schedulable what;
    };

    static bool later(const Item& a, const Item& b) {
        return a.when != b.when ? a.when > b.when : a.order > b.order;
    }

    static QEvent::Type wakeEventType() {
        static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
        return type;
    }

    std::optional<Item> takeNext(std::uint64_t end) {
        std::lock_guard<std::mutex> guard(lock);
        const bool readyDue = !ready.empty() && ready.front().order < end;
        const bool timedDue =
            !due.empty() && due.front().when <= Clock::now() && due.front().order < end;
        if (timedDue && (!readyDue || later(ready.front(), due.front()))) {
            std::pop_heap(due.begin(), due.end(), later);
            std::optional<Item> taken(std::move(due.back()));
            due.pop_back();
            return taken;
        }
        if (!readyDue)
            return std::nullopt;
        std::optional<Item> taken(std::move(ready.front()));
        ready.pop_front();
        return taken;
    }

    void rearm() {
        Clock::time_point earliest = Clock::time_point::max();
        {
            std::lock_guard<std::mutex> guard(lock);
            if (!due.empty())
                earliest = due.front().when;
            if (earliest == armedFor)
                return;
            armedFor = earliest;
        }
        waker->arm(earliest);
    }

    std::mutex lock;
    std::deque<Item> ready;
    std::vector<Item> due; // a heap, earliest first
    std::uint64_t nextOrder = 0;
    bool wakePosted = false;
    Clock::time_point armedFor = Clock::time_point::max();
    Waker* waker = nullptr;
};

// One queue for the process, as there is one main thread; it lives to the end of the process.
ActionQueue& actionQueue() {
    static ActionQueue* const queue = new ActionQueue;
    return *queue;
}

void Waker::arm(Clock::time_point deadline) {
    if (timerId)
        killTimer(std::exchange(timerId, 0));
    if (deadline == Clock::time_point::max())
        return;
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    timerId = startTimer(std::max<std::chrono::milliseconds>(wait, std::chrono::milliseconds(0)),
                         Qt::PreciseTimer);
}

void Waker::customEvent(QEvent*) {
    actionQueue().drain();
}

void Waker::timerEvent(QTimerEvent*) {
    if (timerId)
        killTimer(std::exchange(timerId, 0));
    actionQueue().timerFired();
}

class MainThreadWorker : public rxcpp::schedulers::worker_interface {
public:
    clock_type::time_point now() const override { return Clock::now(); }
    void schedule(const schedulable& scbl) const override {
        actionQueue().push(Clock::now(), scbl, false);
    }
    void schedule(clock_type::time_point when, const schedulable& scbl) const override {
        actionQueue().push(when, scbl, true);
    }
};

} // namespace

MainThreadScheduler::MainThreadScheduler() {
    actionQueue();
}

MainThreadScheduler::clock_type::time_point MainThreadScheduler::now() const {
    return Clock::now();
}

rxcpp::schedulers::worker
MainThreadScheduler::create_worker(rxcpp::composite_subscription cs) const {
    return rxcpp::schedulers::worker(std::move(cs), std::make_shared<MainThreadWorker>());
}

} // namespace Velmor::rx
