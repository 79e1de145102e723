#pragma once

#include "rx-coordination.hpp"
#include "rx-subscriber.hpp"
#include "rx-util.hpp"

#include <chrono>
#include <exception>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace rxcpp {

template <class T> class dynamic_observable;

template <class T = void, class SourceObservable = std::conditional_t<std::is_same_v<T, void>, void,
                                                                      dynamic_observable<T>>>
class observable;

namespace detail {

template <class T> class source_base {
public:
    virtual ~source_base() = default;
    virtual void on_subscribe(const subscriber<T>& o) const = 0;
};

template <class T, class F> class lambda_source final : public source_base<T> {
public:
    explicit lambda_source(F f)
        : f(std::move(f)) {}
    void on_subscribe(const subscriber<T>& o) const override { f(o); }

private:
    F f;
};

template <class T, class F> observable<T> make_observable(F on_subscribe);

template <class T, class S> using map_result_t = std::decay_t<std::invoke_result_t<S&, const T&>>;

template <class T, class CS>
using collection_value_t = typename std::decay_t<std::invoke_result_t<CS&, const T&>>::value_type;

template <class T, class CS, class RS>
using flat_map_result_t =
    std::decay_t<std::invoke_result_t<RS&, const T&, const collection_value_t<T, CS>&>>;

// The operators, each defined in its own header under operators/.
template <class T, class P> observable<T> filter(const observable<T>& source, P predicate);
template <class T, class S>
observable<map_result_t<T, S>> map(const observable<T>& source, S selector);
template <class T, class CS, class RS, class CN>
observable<flat_map_result_t<T, CS, RS>> flat_map(const observable<T>& source, CS collection,
                                                  RS result, CN coordination);
template <class T, class F> observable<T> finally(const observable<T>& source, F last);
template <class T, class CN>
observable<T> timeout(const observable<T>& source, std::chrono::steady_clock::duration period,
                      CN coordination);
template <class T, class S>
observable<T> on_error_resume_next(const observable<T>& source, S selector);
template <class T, class CN> observable<T> observe_on(const observable<T>& source, CN coordination);

} // namespace detail

// The type-erased source of an observable<T>.
template <class T> class dynamic_observable {
public:
    using value_type = T;

    dynamic_observable() = default;
    explicit dynamic_observable(std::shared_ptr<const detail::source_base<T>> s)
        : inner(std::move(s)) {}

    void on_subscribe(const subscriber<T>& o) const {
        if (!inner)
            throw std::logic_error("subscribe on an empty observable");
        inner->on_subscribe(o);
    }

    // Copies share one source and are equal; observables made apart are not, whatever they do.
    friend bool operator==(const dynamic_observable& lhs, const dynamic_observable& rhs) {
        return lhs.inner == rhs.inner;
    }
    friend bool operator!=(const dynamic_observable& lhs, const dynamic_observable& rhs) {
        return !(lhs == rhs);
    }

private:
    std::shared_ptr<const detail::source_base<T>> inner;
};

template <class T, class SourceObservable> class observable {
public:
    using value_type = T;

    observable() = default;
    explicit observable(SourceObservable so)
        : source_operator(std::move(so)) {}

    observable<T> as_dynamic() const { return *this; }

    composite_subscription subscribe(subscriber<T> o) const {
        if (o.is_subscribed()) {
            try {
                source_operator.on_subscribe(o);
            } catch (...) {
                o.on_error(std::current_exception());
            }
        }
        return o.get_subscription();
    }

    // (on_next), (on_next, on_error), (on_next, on_completed), (on_next, on_error, on_completed),
    // each optionally preceded by a composite_subscription.
    template <class Arg0, class... ArgN>
    composite_subscription subscribe(Arg0&& a0, ArgN&&... an) const {
        return subscribe(make_subscriber<T>(std::forward<Arg0>(a0), std::forward<ArgN>(an)...));
    }

    template <class Predicate> observable<T> filter(Predicate p) const {
        return detail::filter(*this, std::move(p));
    }

    template <class Selector> observable<detail::map_result_t<T, Selector>> map(Selector s) const {
        return detail::map(*this, std::move(s));
    }

    template <class CollectionSelector> auto flat_map(CollectionSelector s) const {
        return detail::flat_map(*this, std::move(s), util::take_at<1>(), identity_current_thread());
    }

    // (selector, coordination) or (selector, result_selector).
    template <class CollectionSelector, class Other>
    auto flat_map(CollectionSelector s, Other o) const {
        if constexpr (is_coordination_v<Other>)
            return detail::flat_map(*this, std::move(s), util::take_at<1>(), std::move(o));
        else
            return detail::flat_map(*this, std::move(s), std::move(o), identity_current_thread());
    }

    template <class CollectionSelector, class ResultSelector, class Coordination>
    auto flat_map(CollectionSelector s, ResultSelector rs, Coordination cn) const {
        return detail::flat_map(*this, std::move(s), std::move(rs), std::move(cn));
    }

    template <class LastCall> observable<T> finally(LastCall f) const {
        return detail::finally(*this, std::move(f));
    }

    // (duration, coordination) or (coordination, duration).
    template <class A, class B> observable<T> timeout(A a, B b) const {
        using duration = std::chrono::steady_clock::duration;
        static_assert(is_coordination_v<A> != is_coordination_v<B>,
                      "timeout takes a duration and a coordination");
        if constexpr (is_coordination_v<A>)
            return detail::timeout(*this, std::chrono::duration_cast<duration>(b), std::move(a));
        else
            return detail::timeout(*this, std::chrono::duration_cast<duration>(a), std::move(b));
    }

    template <class Selector> observable<T> on_error_resume_next(Selector s) const {
        return detail::on_error_resume_next(*this, std::move(s));
    }

    template <class Coordination> observable<T> observe_on(Coordination cn) const {
        return detail::observe_on(*this, std::move(cn));
    }

    friend bool operator==(const observable& lhs, const observable& rhs) {
        return lhs.source_operator == rhs.source_operator;
    }
    friend bool operator!=(const observable& lhs, const observable& rhs) { return !(lhs == rhs); }

private:
    SourceObservable source_operator;
};

// observable<> is the home of the factories and is never made itself.
template <> class observable<void, void> {
public:
    observable() = delete;

    // f(subscriber<T>) runs inside subscribe, on the subscribing thread.
    template <class T, class OnSubscribe> static observable<T> create(OnSubscribe f) {
        return detail::make_observable<T>(std::move(f));
    }

    template <class T> static observable<T> just(T v) {
        return detail::make_observable<T>([v = std::move(v)](const subscriber<T>& o) {
            o.on_next(v);
            o.on_completed();
        });
    }

    template <class T, class E> static observable<T> error(E e) {
        std::exception_ptr ep;
        if constexpr (std::is_same_v<std::decay_t<E>, std::exception_ptr>)
            ep = std::move(e);
        else
            ep = std::make_exception_ptr(std::move(e));
        return detail::make_observable<T>([ep](const subscriber<T>& o) { o.on_error(ep); });
    }
};

namespace detail {

template <class T, class F> observable<T> make_observable(F on_subscribe) {
    return observable<T>(
        dynamic_observable<T>(std::make_shared<lambda_source<T, F>>(std::move(on_subscribe))));
}

// An observer that hands terminal signals straight on and values to a function of its own,
// which takes the destination and a value that may be an rvalue.
template <class T, class U, class OnNext> class forward_observer final : public observer_base<T> {
public:
    forward_observer(subscriber<U> dest, OnNext n)
        : dest(std::move(dest))
        , onnext(std::move(n)) {}
    void on_next(const T& v) override { onnext(dest, v); }
    void on_next_moved(T&& v) override { onnext(dest, std::move(v)); }
    void on_error(std::exception_ptr e) override { dest.on_error(std::move(e)); }
    void on_completed() override { dest.on_completed(); }

private:
    subscriber<U> dest;
    OnNext onnext;
};

// A subscriber upstream of dest that shares dest's lifetime, so unsubscribing dest reaches it.
template <class T, class U, class OnNext>
subscriber<T> make_forwarder(const subscriber<U>& dest, OnNext n) {
    return subscriber<T>(dest.get_subscription(),
                         std::make_shared<forward_observer<T, U, OnNext>>(dest, std::move(n)));
}

} // namespace detail
} // namespace rxcpp
