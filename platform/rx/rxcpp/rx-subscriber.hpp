#pragma once

#include "rx-subscription.hpp"

#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

namespace rxcpp {

namespace detail {

template <class T> class observer_base {
public:
    virtual ~observer_base() = default;
    virtual void on_next(const T& v) = 0;
    // A value its sender gives up. An observer that keeps it or passes it on takes it over;
    // the others see it as on_next(const T&).
    virtual void on_next_moved(T&& v) { on_next(static_cast<const T&>(v)); }
    virtual void on_error(std::exception_ptr e) = 0;
    virtual void on_completed() = 0;
};

struct fail_on_error {
    [[noreturn]] void operator()(std::exception_ptr) const { std::terminate(); }
};

struct ignore_completed {
    void operator()() const {}
};

template <class T, class OnNext, class OnError, class OnCompleted>
class lambda_observer final : public observer_base<T> {
public:
    lambda_observer(OnNext n, OnError e, OnCompleted c)
        : onnext(std::move(n))
        , onerror(std::move(e))
        , oncompleted(std::move(c)) {}
    void on_next(const T& v) override { onnext(v); }
    void on_next_moved(T&& v) override {
        if constexpr (std::is_invocable_v<OnNext&, T&&>)
            onnext(std::move(v));
        else
            onnext(v);
    }
    void on_error(std::exception_ptr e) override { onerror(std::move(e)); }
    void on_completed() override { oncompleted(); }

private:
    OnNext onnext;
    OnError onerror;
    OnCompleted oncompleted;
};

} // namespace detail

// An observer bound to a lifetime. It does nothing once the lifetime has ended, ends the
// lifetime after a terminal signal, and turns a throw from on_next into its own on_error.
// It takes no lock: whoever calls it serialises the calls.
template <class T> class subscriber {
    struct unsubscribe_on_exit {
        const composite_subscription& lifetime;
        ~unsubscribe_on_exit() { lifetime.unsubscribe(); }
    };

public:
    using value_type = T;

    subscriber(composite_subscription cs, std::shared_ptr<detail::observer_base<T>> o)
        : lifetime(std::move(cs))
        , destination(std::move(o)) {}

    void on_next(const T& v) const {
        if (!is_subscribed())
            return;
        try {
            destination->on_next(v);
        } catch (...) {
            unsubscribe_on_exit guard{lifetime};
            destination->on_error(std::current_exception());
        }
    }

    // The value is handed on by move as far as the observers downstream take it over.
    void on_next(T&& v) const {
        if (!is_subscribed())
            return;
        try {
            destination->on_next_moved(std::move(v));
        } catch (...) {
            unsubscribe_on_exit guard{lifetime};
            destination->on_error(std::current_exception());
        }
    }

    void on_error(std::exception_ptr e) const {
        if (!is_subscribed())
            return;
        unsubscribe_on_exit guard{lifetime};
        destination->on_error(std::move(e));
    }

    void on_completed() const {
        if (!is_subscribed())
            return;
        unsubscribe_on_exit guard{lifetime};
        destination->on_completed();
    }

    bool is_subscribed() const { return lifetime.is_subscribed(); }
    void unsubscribe() const { lifetime.unsubscribe(); }
    const composite_subscription& get_subscription() const { return lifetime; }
    template <class S> composite_subscription::weak_subscription add(S&& s) const {
        return lifetime.add(std::forward<S>(s));
    }
    void remove(composite_subscription::weak_subscription w) const {
        lifetime.remove(std::move(w));
    }

private:
    composite_subscription lifetime;
    std::shared_ptr<detail::observer_base<T>> destination;
};

namespace detail {

template <class A>
constexpr bool is_subscription_v = std::is_base_of_v<subscription, std::decay_t<A>>;

template <class T, class N, class E, class C>
subscriber<T> make_lambda_subscriber(composite_subscription cs, N n, E e, C c) {
    return subscriber<T>(std::move(cs), std::make_shared<lambda_observer<T, N, E, C>>(
                                            std::move(n), std::move(e), std::move(c)));
}

} // namespace detail

template <class T> subscriber<T> make_subscriber(subscriber<T> o) {
    return o;
}

template <class T, class N> subscriber<T> make_subscriber(composite_subscription cs, N n) {
    return detail::make_lambda_subscriber<T>(std::move(cs), std::move(n), detail::fail_on_error(),
                                             detail::ignore_completed());
}

// The second function is on_error when it takes an exception_ptr, on_completed otherwise.
template <class T, class N, class X>
subscriber<T> make_subscriber(composite_subscription cs, N n, X x) {
    if constexpr (std::is_invocable_v<X&, std::exception_ptr>)
        return detail::make_lambda_subscriber<T>(std::move(cs), std::move(n), std::move(x),
                                                 detail::ignore_completed());
    else
        return detail::make_lambda_subscriber<T>(std::move(cs), std::move(n),
                                                 detail::fail_on_error(), std::move(x));
}

template <class T, class N, class E, class C>
subscriber<T> make_subscriber(composite_subscription cs, N n, E e, C c) {
    return detail::make_lambda_subscriber<T>(std::move(cs), std::move(n), std::move(e),
                                             std::move(c));
}

template <class T, class N, class... Rest,
          class = std::enable_if_t<
              !detail::is_subscription_v<N> && !std::is_same_v<std::decay_t<N>, subscriber<T>>>>
subscriber<T> make_subscriber(N n, Rest... rest) {
    static_assert(sizeof...(Rest) <= 2, "make_subscriber takes on_next, on_error, on_completed");
    return make_subscriber<T>(composite_subscription(), std::move(n), std::move(rest)...);
}

} // namespace rxcpp
