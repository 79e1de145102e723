#pragma once

#include "../rx-lite.hpp"
#include "../rx-signal_queue.hpp"

namespace rxcpp {
namespace detail {

// Signals wait in an unbounded queue and reach dest on the worker, one batch per turn, in the
// order they came; a terminal signal waits its turn like a value.
template <class T>
class observe_on_state : public std::enable_shared_from_this<observe_on_state<T>> {
public:
    observe_on_state(subscriber<T> dest, schedulers::worker w)
        : dest(std::move(dest))
        , w(std::move(w)) {}

    void schedule_drain() {
        w.schedule([self = this->shared_from_this()](const schedulers::schedulable& scbl) {
            self->pending.deliver(self->dest, [](bool) {});
            // Give the worker's other actions a turn before the next batch.
            if (self->pending.more())
                scbl.schedule();
        });
    }

    subscriber<T> dest;
    schedulers::worker w;
    signal_queue<T> pending;
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
                s->pending.drop();
        });
        // The source has a lifetime of its own: its end must not cut short the queue.
        composite_subscription sourceLifetime;
        o.add(sourceLifetime);
        source.subscribe(subscriber<T>(
            sourceLifetime, std::make_shared<queueing_observer<T, observe_on_state<T>>>(state)));
    });
}

} // namespace detail
} // namespace rxcpp
