#pragma once

#include "rx-subscription.hpp"

#include <chrono>
#include <memory>
#include <type_traits>
#include <utility>

namespace rxcpp {
namespace schedulers {

class worker;
class schedulable;

class worker_interface : public std::enable_shared_from_this<worker_interface> {
public:
    using clock_type = std::chrono::steady_clock;
    virtual ~worker_interface() = default;
    virtual clock_type::time_point now() const = 0;
    virtual void schedule(const schedulable& scbl) const = 0;
    virtual void schedule(clock_type::time_point when, const schedulable& scbl) const = 0;
};

class scheduler_interface : public std::enable_shared_from_this<scheduler_interface> {
public:
    using clock_type = std::chrono::steady_clock;
    virtual ~scheduler_interface() = default;
    virtual clock_type::time_point now() const = 0;
    virtual worker create_worker(composite_subscription cs) const = 0;
};

namespace detail {

class action_base {
public:
    virtual ~action_base() = default;
    virtual void run(const schedulable& self) = 0;
};

template <class F> class action final : public action_base {
public:
    explicit action(F f)
        : f(std::move(f)) {}
    void run(const schedulable& self) override { f(self); }

private:
    F f;
};

template <class F>
constexpr bool is_action_function_v =
    std::is_invocable_v<F&, const schedulable&> && !std::is_same_v<std::decay_t<F>, schedulable>;

} // namespace detail

// A worker runs its actions one at a time; its lifetime cancels everything scheduled on it.
class worker {
public:
    using clock_type = std::chrono::steady_clock;

    worker() = default;
    worker(composite_subscription cs, std::shared_ptr<worker_interface> i)
        : lifetime(std::move(cs))
        , inner(std::move(i)) {}

    const composite_subscription& get_subscription() const { return lifetime; }
    bool is_subscribed() const { return lifetime.is_subscribed(); }
    void unsubscribe() const { lifetime.unsubscribe(); }
    template <class S> composite_subscription::weak_subscription add(S&& s) const {
        return lifetime.add(std::forward<S>(s));
    }
    void remove(composite_subscription::weak_subscription w) const {
        lifetime.remove(std::move(w));
    }
    void clear() const { lifetime.clear(); }

    clock_type::time_point now() const { return inner->now(); }

    inline void schedule(const schedulable& scbl) const;
    inline void schedule(clock_type::time_point when, const schedulable& scbl) const;

    template <class F, class = std::enable_if_t<detail::is_action_function_v<F>>>
    void schedule(F f) const;
    template <class F, class = std::enable_if_t<detail::is_action_function_v<F>>>
    void schedule(clock_type::time_point when, F f) const;

    // The same worker: one implementation under one lifetime.
    friend bool operator==(const worker& lhs, const worker& rhs) {
        return lhs.inner == rhs.inner && lhs.lifetime == rhs.lifetime;
    }
    friend bool operator!=(const worker& lhs, const worker& rhs) { return !(lhs == rhs); }

private:
    composite_subscription lifetime;
    std::shared_ptr<worker_interface> inner;
};

// What a worker runs: an action, the worker running it, and a lifetime that cancels it.
class schedulable {
public:
    using clock_type = std::chrono::steady_clock;

    template <class F, class = std::enable_if_t<detail::is_action_function_v<F>>>
    schedulable(const worker& w, F f)
        : schedulable(w.get_subscription(), w, std::move(f)) {}

    template <class F, class = std::enable_if_t<detail::is_action_function_v<F>>>
    schedulable(composite_subscription cs, worker w, F f)
        : lifetime(std::move(cs))
        , controller(std::move(w))
        , activity(std::make_shared<detail::action<F>>(std::move(f))) {}

    const composite_subscription& get_subscription() const { return lifetime; }
    bool is_subscribed() const { return lifetime.is_subscribed(); }
    void unsubscribe() const { lifetime.unsubscribe(); }
    template <class S> composite_subscription::weak_subscription add(S&& s) const {
        return lifetime.add(std::forward<S>(s));
    }
    void remove(composite_subscription::weak_subscription w) const {
        lifetime.remove(std::move(w));
    }
    void clear() const { lifetime.clear(); }

    const worker& get_worker() const { return controller; }
    clock_type::time_point now() const { return controller.now(); }

    // Puts this action on its worker again, now or at a time.
    void schedule() const { controller.schedule(*this); }
    void schedule(clock_type::time_point when) const { controller.schedule(when, *this); }

    void operator()() const {
        if (is_subscribed())
            activity->run(*this);
    }

private:
    composite_subscription lifetime;
    worker controller;
    std::shared_ptr<detail::action_base> activity;
};

inline void worker::schedule(const schedulable& scbl) const {
    if (scbl.is_subscribed())
        inner->schedule(scbl);
}

inline void worker::schedule(clock_type::time_point when, const schedulable& scbl) const {
    if (scbl.is_subscribed())
        inner->schedule(when, scbl);
}

template <class F, class> void worker::schedule(F f) const {
    schedule(schedulable(*this, std::move(f)));
}

template <class F, class> void worker::schedule(clock_type::time_point when, F f) const {
    schedule(when, schedulable(*this, std::move(f)));
}

class scheduler {
public:
    using clock_type = std::chrono::steady_clock;

    scheduler() = default;
    explicit scheduler(std::shared_ptr<scheduler_interface> i)
        : inner(std::move(i)) {}

    clock_type::time_point now() const { return inner->now(); }
    worker create_worker(composite_subscription cs = composite_subscription()) const {
        return inner->create_worker(std::move(cs));
    }

    // Copies of one scheduler are equal.
    friend bool operator==(const scheduler& lhs, const scheduler& rhs) {
        return lhs.inner == rhs.inner;
    }
    friend bool operator!=(const scheduler& lhs, const scheduler& rhs) { return !(lhs == rhs); }

private:
    std::shared_ptr<scheduler_interface> inner;
};

template <class Scheduler, class... ArgN> scheduler make_scheduler(ArgN&&... an) {
    return scheduler(std::make_shared<Scheduler>(std::forward<ArgN>(an)...));
}

} // namespace schedulers
} // namespace rxcpp
