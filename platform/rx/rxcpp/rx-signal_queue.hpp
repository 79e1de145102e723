#pragma once

#include "rx-subscriber.hpp"

#include <deque>
#include <exception>
#include <mutex>
#include <optional>

namespace rxcpp {
namespace detail {

// The signals of one stream on their way to a worker, in the order they came. Whoever finds the
// queue idle schedules one drain, and a drain delivers every signal queued when it began: a fast
// source costs a queue push per signal rather than a scheduled action.
template <class T> class signal_queue {
public:
    // Each push says whether the caller must schedule a drain.
    bool push_value(const T& value) {
        std::lock_guard<std::mutex> guard(lock);
        queue.emplace_back().value.emplace(value);
        return wake();
    }
    bool push_error(std::exception_ptr error) {
        std::lock_guard<std::mutex> guard(lock);
        queue.emplace_back().error = std::move(error);
        return wake();
    }
    bool push_completed() {
        std::lock_guard<std::mutex> guard(lock);
        queue.emplace_back();
        return wake();
    }

    // Delivers what was queued when it began; `on_value` runs before each value goes to dest.
    template <class OnValue> void deliver(const subscriber<T>& dest, OnValue on_value) {
        std::deque<signal> batch;
        {
            std::lock_guard<std::mutex> guard(lock);
            batch.swap(queue);
        }
        for (auto& s : batch) {
            if (s.value) {
                on_value();
                dest.on_next(*s.value);
            } else if (s.error) {
                dest.on_error(s.error);
            } else {
                dest.on_completed();
            }
        }
    }

    // After a drain: true when more came meanwhile and the drain must go again; otherwise the
    // queue is idle and the next push schedules a new one.
    bool more() {
        std::lock_guard<std::mutex> guard(lock);
        draining = !queue.empty();
        return draining;
    }

    void drop() {
        std::deque<signal> dropped;
        std::lock_guard<std::mutex> guard(lock);
        dropped.swap(queue);
    }

private:
    struct signal {
        std::optional<T> value;
        std::exception_ptr error; // neither value nor error: completion
    };

    bool wake() { return !std::exchange(draining, true); }

    std::mutex lock;
    std::deque<signal> queue;
    bool draining = false;
};

// Queues each signal in `state->pending` and has the state schedule a drain when the queue was
// idle.
template <class T, class State> class queueing_observer final : public observer_base<T> {
public:
    explicit queueing_observer(std::shared_ptr<State> s)
        : state(std::move(s)) {}
    void on_next(const T& v) override {
        if (state->pending.push_value(v))
            state->schedule_drain();
    }
    void on_error(std::exception_ptr e) override {
        if (state->pending.push_error(std::move(e)))
            state->schedule_drain();
    }
    void on_completed() override {
        if (state->pending.push_completed())
            state->schedule_drain();
    }

private:
    std::shared_ptr<State> state;
};

} // namespace detail
} // namespace rxcpp
