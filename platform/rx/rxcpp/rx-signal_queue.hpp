#pragma once

#include "rx-subscriber.hpp"

#include <cstddef>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace rxcpp {
namespace detail {

// The signals of one stream on their way to a worker, in the order they came. Whoever finds the
// queue idle schedules one drain, and a drain delivers every signal queued when it began: a fast
// source costs a queue push per signal rather than a scheduled action. Values travel by move,
// and the two buffers trade places at each drain, so a steady stream allocates nothing.
template <class T> class signal_queue {
public:
    // Each push says whether the caller must schedule a drain.
    template <class V> bool push_value(V&& value) {
        std::lock_guard<std::mutex> guard(lock);
        queue.emplace_back().value.emplace(std::forward<V>(value));
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

    // Delivers what was queued when it began, each value by move. `on_value(last)` runs before
    // each value goes to dest; `last` says that no later value is in this batch. One drain runs
    // at a time.
    template <class OnValue> void deliver(const subscriber<T>& dest, OnValue on_value) {
        {
            std::lock_guard<std::mutex> guard(lock);
            batch.swap(queue);
        }
        std::size_t lastValue = batch.size();
        while (lastValue > 0 && !batch[lastValue - 1].value)
            --lastValue;
        for (std::size_t i = 0; i < batch.size(); ++i) {
            signal& s = batch[i];
            if (s.value) {
                on_value(i + 1 == lastValue);
                dest.on_next(std::move(*s.value));
            } else if (s.error) {
                dest.on_error(s.error);
            } else {
                dest.on_completed();
            }
        }
        // A burst's buffer is let go of; a steady stream's is kept for the next batch.
        if (batch.capacity() > kept_capacity)
            std::vector<signal>().swap(batch);
        else
            batch.clear();
    }

    // After a drain: true when more came meanwhile and the drain must go again; otherwise the
    // queue is idle and the next push schedules a new one. A source that is still sending is
    // likely to send again at once, so an empty queue gets one yield of the thread first: its
    // next signal then joins this drain rather than waking the worker anew.
    bool more() {
        {
            std::lock_guard<std::mutex> guard(lock);
            if (!queue.empty())
                return true;
        }
        std::this_thread::yield();
        std::lock_guard<std::mutex> guard(lock);
        draining = !queue.empty();
        return draining;
    }

    void drop() {
        std::vector<signal> dropped;
        std::lock_guard<std::mutex> guard(lock);
        dropped.swap(queue);
    }

private:
    struct signal {
        std::optional<T> value;
        std::exception_ptr error; // neither value nor error: completion
    };

    static constexpr std::size_t kept_capacity = 1024;

    bool wake() { return !std::exchange(draining, true); }

    std::mutex lock;
    std::vector<signal> queue;
    std::vector<signal> batch; // the drain's own
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
    void on_next_moved(T&& v) override {
        if (state->pending.push_value(std::move(v)))
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
