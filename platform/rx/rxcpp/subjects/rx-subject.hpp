#pragma once

#include "../rx-observable.hpp"

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace rxcpp {
namespace subjects {
namespace detail {

// One object is the subject's observer, its list of observers, and a child of its own lifetime:
// ending that lifetime drops the observers without a signal.
template <class T>
class subject_state final : public rxcpp::detail::observer_base<T>,
                            public rxcpp::detail::source_base<T>,
                            public rxcpp::detail::subscription_state,
                            public std::enable_shared_from_this<subject_state<T>> {
    enum class mode : unsigned char { casting, completed, errored, disposed };
    struct entry {
        std::uint64_t id;
        subscriber<T> o;
    };
    using list = std::vector<entry>;

public:
    subject_state()
        : subscription_state(true) {}

    void add(const subscriber<T>& o) {
        std::unique_lock<rxcpp::detail::spin_lock> guard(lock);
        if (current == mode::completed) {
            guard.unlock();
            return o.on_completed();
        }
        if (current == mode::errored) {
            auto e = error;
            guard.unlock();
            return o.on_error(e);
        }
        if (current == mode::disposed) {
            guard.unlock();
            return o.unsubscribe();
        }
        const auto id = nextId++;
        auto grown = std::make_shared<list>();
        grown->reserve((observers ? observers->size() : 0) + 1);
        if (observers)
            grown->assign(observers->begin(), observers->end());
        grown->push_back(entry{id, o});
        auto old = std::exchange(observers, std::move(grown));
        guard.unlock();
        old.reset();
        o.add([weak = this->weak_from_this(), id] {
            if (auto self = weak.lock())
                self->remove(id);
        });
    }

    // As the source of the subject's observable. The state is never made const: the source's
    // interface is const because an observable's source is shared by its copies.
    void on_subscribe(const subscriber<T>& o) const override {
        const_cast<subject_state*>(this)->add(o);
    }

    bool has_observers() {
        std::lock_guard<rxcpp::detail::spin_lock> guard(lock);
        return observers && !observers->empty();
    }

    void on_next(const T& v) override {
        std::shared_ptr<const list> snapshot;
        {
            std::lock_guard<rxcpp::detail::spin_lock> guard(lock);
            if (current != mode::casting)
                return;
            snapshot = observers;
        }
        if (!snapshot)
            return;
        for (const auto& e : *snapshot)
            e.o.on_next(v);
    }

    // The last observer takes the value over; the others get copies.
    void on_next_moved(T&& v) override {
        std::shared_ptr<const list> snapshot;
        {
            std::lock_guard<rxcpp::detail::spin_lock> guard(lock);
            if (current != mode::casting)
                return;
            snapshot = observers;
        }
        if (!snapshot || snapshot->empty())
            return;
        for (std::size_t i = 0; i + 1 < snapshot->size(); ++i)
            (*snapshot)[i].o.on_next(v);
        snapshot->back().o.on_next(std::move(v));
    }

    void on_error(std::exception_ptr e) override {
        auto snapshot = end(mode::errored, e);
        if (!snapshot)
            return;
        for (const auto& entry : *snapshot)
            entry.o.on_error(e);
    }

    void on_completed() override {
        auto snapshot = end(mode::completed, nullptr);
        if (!snapshot)
            return;
        for (const auto& entry : *snapshot)
            entry.o.on_completed();
    }

    // The subject's own lifetime ended.
    void unsubscribe() override {
        if (issubscribed.exchange(false, std::memory_order_acq_rel))
            end(mode::disposed, nullptr);
    }

private:
    std::shared_ptr<const list> end(mode how, std::exception_ptr e) {
        std::lock_guard<rxcpp::detail::spin_lock> guard(lock);
        if (current != mode::casting)
            return nullptr;
        current = how;
        error = std::move(e);
        return std::move(observers);
    }

    void remove(std::uint64_t id) {
        std::shared_ptr<const list> old;
        std::lock_guard<rxcpp::detail::spin_lock> guard(lock);
        if (!observers)
            return;
        auto shrunk = std::make_shared<list>();
        shrunk->reserve(observers->size());
        for (const auto& e : *observers)
            if (e.id != id)
                shrunk->push_back(e);
        old = std::exchange(observers, std::move(shrunk));
    }

    rxcpp::detail::spin_lock lock;
    mode current = mode::casting;
    std::uint64_t nextId = 0;
    std::exception_ptr error;
    std::shared_ptr<const list> observers;
};

} // namespace detail

// Sends what its subscriber receives to every observer subscribed at that moment, in the order
// they subscribed. Nothing is replayed, but the end is remembered: a late observer gets it at
// once.
template <class T> class subject {
public:
    subject()
        : subject(composite_subscription()) {}

    explicit subject(composite_subscription cs)
        : state(std::make_shared<detail::subject_state<T>>())
        , lifetime(std::move(cs)) {
        lifetime.add(subscription(state));
    }

    bool has_observers() const { return state->has_observers(); }
    subscriber<T> get_subscriber() const { return subscriber<T>(lifetime, state); }
    composite_subscription get_subscription() const { return lifetime; }

    // The subject's state is the observable's source, so this makes nothing.
    observable<T> get_observable() const { return observable<T>(dynamic_observable<T>(state)); }

private:
    std::shared_ptr<detail::subject_state<T>> state;
    composite_subscription lifetime;
};

} // namespace subjects
} // namespace rxcpp
