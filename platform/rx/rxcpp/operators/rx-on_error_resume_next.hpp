#pragma once

#include "../rx-lite.hpp"

namespace rxcpp {
namespace detail {

template <class T, class S> class resume_observer final : public observer_base<T> {
public:
    resume_observer(subscriber<T> dest, S selector)
        : dest(std::move(dest))
        , selector(std::move(selector)) {}
    void on_next(const T& v) override { dest.on_next(v); }
    void on_next_moved(T&& v) override { dest.on_next(std::move(v)); }
    void on_completed() override { dest.on_completed(); }
    void on_error(std::exception_ptr e) override {
        observable<T> resumed;
        try {
            resumed = selector(std::move(e));
        } catch (...) {
            dest.on_error(std::current_exception());
            return;
        }
        resumed.subscribe(dest);
    }

private:
    subscriber<T> dest;
    S selector;
};

template <class T, class S>
observable<T> on_error_resume_next(const observable<T>& source, S selector) {
    return make_observable<T>([source, selector](const subscriber<T>& o) {
        composite_subscription sourceLifetime;
        o.add(sourceLifetime);
        source.subscribe(
            subscriber<T>(sourceLifetime, std::make_shared<resume_observer<T, S>>(o, selector)));
    });
}

} // namespace detail
} // namespace rxcpp
