#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace rxcpp {

namespace detail {

class subscription_state {
public:
    explicit subscription_state(bool subscribed)
        : issubscribed(subscribed) {}
    virtual ~subscription_state() = default;
    bool is_subscribed() const { return issubscribed.load(std::memory_order_acquire); }
    virtual void unsubscribe() { issubscribed.store(false, std::memory_order_release); }

protected:
    std::atomic<bool> issubscribed;
};

template <class F> class callback_state final : public subscription_state {
public:
    explicit callback_state(F f)
        : subscription_state(true)
        , f(std::move(f)) {}
    void unsubscribe() override {
        if (issubscribed.exchange(false, std::memory_order_acq_rel))
            f();
    }

private:
    F f;
};

// A lock of one byte: there is a composite for every subscription, and it is held only for a
// few instructions.
class spin_lock {
public:
    void lock() noexcept {
        while (locked.exchange(true, std::memory_order_acquire))
            while (locked.load(std::memory_order_relaxed))
                std::this_thread::yield();
    }
    void unlock() noexcept { locked.store(false, std::memory_order_release); }

private:
    std::atomic<bool> locked{false};
};

class composite_state final : public subscription_state {
    using child = std::shared_ptr<subscription_state>;
    using list = std::vector<child>;

    // Children taken out under the lock, let go of after it: letting go may run any code.
    struct released {
        child one;
        list more;
    };

public:
    composite_state()
        : subscription_state(true) {}

    // Most composites hold one child at a time, which sits beside the list: the list is made
    // only for a second child, and a composite stays as small as a bare list. Children that ended
    // by themselves are pruned whenever the list is full, and it then grows if still half full, so
    // a parent of many short-lived children (a flat_map with a million inner streams) stays small
    // at amortised constant cost.
    void add(const child& c) {
        if (!c->is_subscribed())
            return;
        released out;
        {
            std::lock_guard<spin_lock> guard(lock);
            if (is_subscribed()) {
                if (!first || !first->is_subscribed()) {
                    out.one = std::exchange(first, c);
                    return;
                }
                if (!more)
                    more = std::make_unique<list>();
                if (more->size() == more->capacity()) {
                    prune(out);
                    if (more->size() * 2 > more->capacity())
                        more->reserve(more->capacity() * 2);
                }
                more->push_back(c);
                return;
            }
        }
        c->unsubscribe();
    }

    void remove(const std::weak_ptr<subscription_state>& weak) {
        auto c = weak.lock();
        if (!c)
            return;
        released out;
        std::lock_guard<spin_lock> guard(lock);
        if (c == first) {
            out.one = std::move(first);
            return;
        }
        if (!more)
            return;
        if (!c->is_subscribed()) {
            if (++ended * 2 >= more->size())
                prune(out);
            return;
        }
        auto it = std::find(more->begin(), more->end(), c);
        if (it == more->end())
            return;
        std::swap(*it, more->back());
        more->pop_back();
    }

    void clear() {
        released out;
        {
            std::lock_guard<spin_lock> guard(lock);
            out = take();
        }
        unsubscribe_each(out);
    }

    void unsubscribe() override {
        released out;
        {
            std::lock_guard<spin_lock> guard(lock);
            if (!issubscribed.exchange(false, std::memory_order_acq_rel))
                return;
            out = take();
        }
        unsubscribe_each(out);
    }

private:
    released take() {
        ended = 0;
        return released{std::move(first), more ? std::move(*more) : list()};
    }

    static void unsubscribe_each(const released& out) {
        if (out.one)
            out.one->unsubscribe();
        for (const auto& c : out.more)
            c->unsubscribe();
    }

    // Takes out the listed children that have ended. Often it is one, which needs no list.
    void prune(released& out) {
        ended = 0;
        const auto gone = std::partition(more->begin(), more->end(),
                                         [](const auto& c) { return c->is_subscribed(); });
        if (gone == more->end())
            return;
        out.one = std::move(*gone);
        out.more.assign(std::make_move_iterator(gone + 1), std::make_move_iterator(more->end()));
        more->erase(gone, more->end());
    }

    spin_lock lock;
    std::uint32_t ended = 0;
    child first;
    std::unique_ptr<list> more;
};

} // namespace detail

// Copies share one state, and two subscriptions are equal exactly when they share it.
class subscription {
public:
    using weak_state_type = std::weak_ptr<detail::subscription_state>;

    // An empty subscription is already unsubscribed. Each has a state of its own, so two empty
    // subscriptions are not equal.
    subscription()
        : state(std::make_shared<detail::subscription_state>(false)) {}
    explicit subscription(std::shared_ptr<detail::subscription_state> s)
        : state(std::move(s)) {}

    bool is_subscribed() const { return state->is_subscribed(); }
    void unsubscribe() const { state->unsubscribe(); }

    // The handle that a composite's remove takes, as its add gives it.
    weak_state_type get_weak() const { return state; }

    const std::shared_ptr<detail::subscription_state>& get_state() const { return state; }

protected:
    std::shared_ptr<detail::subscription_state> state;
};

inline bool operator==(const subscription& lhs, const subscription& rhs) {
    return lhs.get_state() == rhs.get_state();
}
inline bool operator!=(const subscription& lhs, const subscription& rhs) {
    return !(lhs == rhs);
}
// An order of states, so that subscriptions can be kept in ordered containers.
inline bool operator<(const subscription& lhs, const subscription& rhs) {
    return lhs.get_state() < rhs.get_state();
}

inline subscription make_subscription() {
    return subscription();
}

// A subscription that calls f once, when it is first unsubscribed.
template <class F,
          class = std::enable_if_t<
              std::is_invocable_v<F&> && !std::is_base_of_v<subscription, std::decay_t<F>>>>
subscription make_subscription(F f) {
    return subscription(std::make_shared<detail::callback_state<F>>(std::move(f)));
}

class composite_subscription : public subscription {
public:
    using weak_subscription = subscription::weak_state_type;

    composite_subscription()
        : subscription(std::make_shared<detail::composite_state>()) {}

    weak_subscription add(subscription s) const {
        composite().add(s.get_state());
        return s.get_state();
    }

    template <class F,
              class = std::enable_if_t<
                  std::is_invocable_v<F&> && !std::is_base_of_v<subscription, std::decay_t<F>>>>
    weak_subscription add(F f) const {
        return add(make_subscription(std::move(f)));
    }

    void remove(weak_subscription w) const { composite().remove(w); }
    void clear() const { composite().clear(); }

private:
    detail::composite_state& composite() const {
        return static_cast<detail::composite_state&>(*state);
    }
};

inline bool operator==(const composite_subscription& lhs, const composite_subscription& rhs) {
    return static_cast<const subscription&>(lhs) == static_cast<const subscription&>(rhs);
}
inline bool operator!=(const composite_subscription& lhs, const composite_subscription& rhs) {
    return !(lhs == rhs);
}
inline bool operator<(const composite_subscription& lhs, const composite_subscription& rhs) {
    return static_cast<const subscription&>(lhs) < static_cast<const subscription&>(rhs);
}

} // namespace rxcpp
