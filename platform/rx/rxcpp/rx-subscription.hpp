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
    using list = std::vector<std::shared_ptr<subscription_state>>;

public:
    composite_state()
        : subscription_state(true) {}

    // Children that ended by themselves are pruned whenever the list is full, and the list then
    // grows if still half full, so a parent of many short-lived children (a flat_map with a
    // million inner streams) stays small at amortised constant cost.
    void add(const std::shared_ptr<subscription_state>& child) {
        if (!child->is_subscribed())
            return;
        list pruned;
        {
            std::lock_guard<spin_lock> guard(lock);
            if (is_subscribed()) {
                if (children.size() == children.capacity()) {
                    pruned = prune();
                    if (children.size() * 2 > children.capacity())
                        children.reserve(children.capacity() * 2);
                }
                children.push_back(child);
                return;
            }
        }
        child->unsubscribe();
    }

    void remove(const std::weak_ptr<subscription_state>& weak) {
        auto child = weak.lock();
        if (!child)
            return;
        list pruned;
        std::lock_guard<spin_lock> guard(lock);
        if (!child->is_subscribed()) {
            if (++ended * 2 >= children.size())
                pruned = prune();
            return;
        }
        auto it = std::find(children.begin(), children.end(), child);
        if (it == children.end())
            return;
        std::swap(*it, children.back());
        children.pop_back();
    }

    void clear() {
        list taken;
        {
            std::lock_guard<spin_lock> guard(lock);
            taken.swap(children);
            ended = 0;
        }
        for (auto& child : taken)
            child->unsubscribe();
    }

    void unsubscribe() override {
        list taken;
        {
            std::lock_guard<spin_lock> guard(lock);
            if (!issubscribed.exchange(false, std::memory_order_acq_rel))
                return;
            taken.swap(children);
        }
        for (auto& child : taken)
            child->unsubscribe();
    }

private:
    // Takes out the children that have ended; the caller lets go of them outside the lock.
    list prune() {
        ended = 0;
        auto kept = std::partition(children.begin(), children.end(),
                                   [](const auto& c) { return c->is_subscribed(); });
        list pruned(std::make_move_iterator(kept), std::make_move_iterator(children.end()));
        children.erase(kept, children.end());
        return pruned;
    }

    spin_lock lock;
    std::uint32_t ended = 0;
    list children;
};

} // namespace detail

class subscription {
public:
    // An empty subscription is already unsubscribed.
    subscription()
        : state(empty_state()) {}
    explicit subscription(std::shared_ptr<detail::subscription_state> s)
        : state(std::move(s)) {}

    bool is_subscribed() const { return state->is_subscribed(); }
    void unsubscribe() const { state->unsubscribe(); }

    const std::shared_ptr<detail::subscription_state>& get_state() const { return state; }

private:
    static const std::shared_ptr<detail::subscription_state>& empty_state() {
        static const auto empty = std::make_shared<detail::subscription_state>(false);
        return empty;
    }

protected:
    std::shared_ptr<detail::subscription_state> state;
};

class composite_subscription : public subscription {
public:
    using weak_subscription = std::weak_ptr<detail::subscription_state>;

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
        return add(subscription(std::make_shared<detail::callback_state<F>>(std::move(f))));
    }

    void remove(weak_subscription w) const { composite().remove(w); }
    void clear() const { composite().clear(); }

private:
    detail::composite_state& composite() const {
        return static_cast<detail::composite_state&>(*state);
    }
};

} // namespace rxcpp
