#pragma once

#include "../rx-lite.hpp"
#include "../rx-signal_queue.hpp"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace rxcpp {

class timeout_error : public std::runtime_error {
public:
    explicit timeout_error(const std::string& msg)
        : std::runtime_error(msg) {}
};

namespace detail {

// Lives on the worker: every value, end and timer runs there. Only one timer is pending at a
// time; a timer that finds values newer than its tag re-arms for the newest deadline instead of
// failing, which is what a pile of stale timers would amount to.
template <class T> class timeout_state : public std::enable_shared_from_this<timeout_state<T>> {
    using clock = std::chrono::steady_clock;

public:
    timeout_state(subscriber<T> dest, schedulers::worker w, composite_subscription workerLifetime,
                  clock::duration period)
        : dest(std::move(dest))
        , w(std::move(w))
        , workerLifetime(std::move(workerLifetime))
        , period(period) {}

    void start() {
        deadline = w.now() + period;
        arm();
    }

    // Signals cross to the worker in batches (see signal_queue). The drain is scheduled at the
    // first signal's arrival, as that signal's own action would be, so a timer due later finds
    // it delivered and a timer due earlier fires first.
    void schedule_drain() {
        w.schedule([self = this->shared_from_this()](const schedulers::schedulable& scbl) {
            self->deliver_queued();
            // Give the timers a turn before the next batch.
            if (self->pending.more())
                scbl.schedule();
        });
    }

    // Upstream is let go on the worker, behind whatever it has already handed over.
    void release() {
        auto self = this->shared_from_this();
        auto let_go = [self] {
            self->sourceLifetime.unsubscribe();
            self->workerLifetime.unsubscribe();
        };
        if (!w.is_subscribed())
            return let_go();
        w.schedule([let_go](const schedulers::schedulable&) { let_go(); });
    }

    subscriber<T> dest;
    schedulers::worker w;
    composite_subscription workerLifetime;
    composite_subscription sourceLifetime;

    signal_queue<T> pending;

private:
    void deliver_queued() {
        // Only the last value's deadline counts: timers run on this worker, so none can fire
        // between the values of one batch.
        pending.deliver(dest, [this](bool last) {
            ++counter;
            if (last)
                deadline = w.now() + period;
        });
    }

    void arm() {
        w.schedule(deadline, [self = this->shared_from_this(), tag = counter](
                                 const schedulers::schedulable&) { self->expire(tag); });
    }

    void expire(std::uint64_t tag) {
        if (tag != counter)
            return arm();
        dest.on_error(std::make_exception_ptr(timeout_error("timeout has occurred")));
    }

    clock::duration period;
    std::uint64_t counter = 0;
    clock::time_point deadline;
};

template <class T, class CN>
observable<T> timeout(const observable<T>& source, std::chrono::steady_clock::duration period,
                      CN coordination) {
    return make_observable<T>([source, period, coordination](const subscriber<T>& o) {
        composite_subscription workerLifetime;
        auto w = coordination.create_coordinator(workerLifetime).get_worker();
        auto state = std::make_shared<timeout_state<T>>(o, w, workerLifetime, period);
        // Weak: a stream that never ends must not keep itself alive through its own lifetime.
        // While upstream is held, the state is too.
        o.add([weak = std::weak_ptr<timeout_state<T>>(state)] {
            if (auto s = weak.lock())
                s->release();
        });
        state->start();
        source.subscribe(
            subscriber<T>(state->sourceLifetime,
                          std::make_shared<queueing_observer<T, timeout_state<T>>>(state)));
    });
}

} // namespace detail
} // namespace rxcpp
