#pragma once

#include "../rx-lite.hpp"

#include <deque>
#include <mutex>
#include <optional>

namespace rxcpp {
namespace detail {

// Signals wait in an unbounded queue and reach dest on the worker, one batch per turn, in the
// order they came; a terminal signal waits its turn like a value.
template <class T>
class observe_on_state : public std::enable_shared_from_this<observe_on_state<T>> {
    struct notification {
        std::optional<T> value;
        std::exception_ptr error; // neither value nor error: completion
    };

public:
    observe_on_state(subscriber<T> dest, schedulers::worker w)
        : dest(std::move(dest))
        , w(std::move(w)) {}

    void push(std::optional<T> value, std::exception_ptr error) {
        {
            std::lock_guard<std::mutex> guard(lock);
            queue.push_back(notification{std::move(value), std::move(error)});
            if (draining)
                return;
            draining = true;
        }
        w.schedule([self = this->shared_from_this()](const schedulers::schedulable& scbl) {
            self->drain(scbl);
        });
    }

    void drop() {
        std::deque<notification> dropped;
        std::lock_guard<std::mutex> guard(lock);
        dropped.swap(queue);
    }

private:
    void drain(const schedulers::schedulable& self) {
        std::deque<notification> batch;
        {
            std::lock_guard<std::mutex> guard(lock);
            batch.swap(queue);
        }
        for (auto& n : batch) {
            if (n.value)
                dest.on_next(*n.value);
            else if (n.error)
                dest.on_error(n.error);
            else
                dest.on_completed();
        }
        {
            std::lock_guard<std::mutex> guard(lock);
            if (queue.empty()) {
                draining = false;
                return;
            }
        }
        // Give the worker's other actions a turn before the next batch.
        self.schedule();
    }

    subscriber<T> dest;
    schedulers::worker w;
    std::mutex lock;
    std::deque<notification> queue;
    bool draining = false;
};

template <class T> class observe_on_observer final : public observer_base<T> {
public:
    explicit observe_on_observer(std::shared_ptr<observe_on_state<T>> s)
        : state(std::move(s)) {}
    void on_next(const T& v) override { state->push(v, nullptr); }
    void on_error(std::exception_ptr e) override { state->push(std::nullopt, std::move(e)); }
    void on_completed() override { state->push(std::nullopt, nullptr); }

private:
    std::shared_ptr<observe_on_state<T>> state;
};

template <class T, class CN>
observable<T> observe_on(const observable<T>& source, CN coordination) {
    return make_observable<T>([source, coordination](const subscriber<T>& o) {
        composite_subscription workerLifetime;
        auto state = std::make_shared<observe_on_state<T>>(
            o, coordination.create_coordinator(workerLifetime).get_worker());
        o.add(workerLifetime);
        o.add([weak = std::weak_ptr<observe_on_state<T>>(state)] {
            if (auto s = weak.lock())
                s->drop();
        });
        // The source has a lifetime of its own: its end must not cut short the queue.
        composite_subscription sourceLifetime;
        o.add(sourceLifetime);
        source.subscribe(
            subscriber<T>(sourceLifetime, std::make_shared<observe_on_observer<T>>(state)));
    });
}

} // namespace detail
} // namespace rxcpp
