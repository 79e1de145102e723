#pragma once

#include "../rx-lite.hpp"
#include "rx-observe_on.hpp"

#include <atomic>

namespace rxcpp {
namespace detail {

template <class T, class U, class R, class CS, class RS> class flat_map_state {
public:
    // The default result selector keeps the inner value: no copy of the outer one is kept.
    static constexpr bool keeps_inner = std::is_same_v<RS, util::take_at<1>>;

    flat_map_state(subscriber<R> out, CS collection, RS result)
        : out(std::move(out))
        , collection(std::move(collection))
        , result(std::move(result)) {}

    void fail(std::exception_ptr e) {
        if (!ended.exchange(true))
            out.on_error(std::move(e));
    }

    // One count for the source and one for each inner stream; the last to complete completes.
    void complete_one() {
        if (pending.fetch_sub(1, std::memory_order_acq_rel) == 1 && !ended.exchange(true))
            out.on_completed();
    }

    subscriber<R> out;
    CS collection;
    RS result;
    std::atomic<long> pending{1};
    std::atomic<bool> ended{false};
};

struct no_outer_value {
    template <class T> explicit no_outer_value(const T&) {}
};

template <class State, class T, class U> class flat_map_inner final : public observer_base<U> {
public:
    flat_map_inner(std::shared_ptr<State> s, const T& outer)
        : state(std::move(s))
        , outer(outer) {}

    void on_next(const U& u) override {
        if constexpr (State::keeps_inner) {
            state->out.on_next(u);
        } else {
            try {
                state->out.on_next(state->result(outer, u));
            } catch (...) {
                state->fail(std::current_exception());
            }
        }
    }
    void on_next_moved(U&& u) override {
        if constexpr (State::keeps_inner)
            state->out.on_next(std::move(u));
        else
            on_next(u);
    }
    void on_error(std::exception_ptr e) override { state->fail(std::move(e)); }
    void on_completed() override { state->complete_one(); }

private:
    std::shared_ptr<State> state;
    std::conditional_t<State::keeps_inner, no_outer_value, T> outer;
};

template <class State, class T, class U> class flat_map_outer final : public observer_base<T> {
public:
    explicit flat_map_outer(std::shared_ptr<State> s)
        : state(std::move(s)) {}

    void on_next(const T& v) override {
        observable<U> inner;
        try {
            inner = state->collection(v);
        } catch (...) {
            state->fail(std::current_exception());
            return;
        }
        state->pending.fetch_add(1, std::memory_order_relaxed);
        // Ended inner lifetimes are pruned from out's lifetime as it grows.
        composite_subscription innerLifetime;
        state->out.add(innerLifetime);
        inner.subscribe(
            subscriber<U>(innerLifetime, std::make_shared<flat_map_inner<State, T, U>>(state, v)));
    }
    void on_error(std::exception_ptr e) override { state->fail(std::move(e)); }
    void on_completed() override { state->complete_one(); }

private:
    std::shared_ptr<State> state;
};

template <class T, class CS, class RS, class CN>
observable<flat_map_result_t<T, CS, RS>> flat_map(const observable<T>& source, CS collection,
                                                  RS result, CN coordination) {
    using U = collection_value_t<T, CS>;
    using R = flat_map_result_t<T, CS, RS>;
    using State = flat_map_state<T, U, R, CS, RS>;
    auto merged = make_observable<R>([source, collection, result](const subscriber<R>& o) {
        auto state = std::make_shared<State>(o, collection, result);
        composite_subscription sourceLifetime;
        o.add(sourceLifetime);
        source.subscribe(
            subscriber<T>(sourceLifetime, std::make_shared<flat_map_outer<State, T, U>>(state)));
    });
    if constexpr (std::is_same_v<CN, identity_one_worker>)
        return merged;
    else
        return merged.observe_on(std::move(coordination));
}

} // namespace detail
} // namespace rxcpp
