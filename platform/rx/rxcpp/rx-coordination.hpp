#pragma once

#include "rx-scheduler.hpp"
#include "schedulers/rx-currentthread.hpp"
#include "schedulers/rx-newthread.hpp"

#include <type_traits>

namespace rxcpp {

struct coordination_base {};

template <class C>
constexpr bool is_coordination_v = std::is_base_of_v<coordination_base, std::decay_t<C>>;

// What an operator gets from a coordination for one subscription.
class coordinator {
public:
    explicit coordinator(schedulers::worker w)
        : w(std::move(w)) {}
    const schedulers::worker& get_worker() const { return w; }

private:
    schedulers::worker w;
};

// Pass-through: no change of thread, no serialisation.
class identity_one_worker : public coordination_base {
public:
    explicit identity_one_worker(schedulers::scheduler sc)
        : factory(std::move(sc)) {}
    schedulers::scheduler::clock_type::time_point now() const { return factory.now(); }
    coordinator create_coordinator(composite_subscription cs = composite_subscription()) const {
        return coordinator(factory.create_worker(std::move(cs)));
    }

private:
    schedulers::scheduler factory;
};

// Everything coordinated moves onto one worker of the scheduler.
class observe_on_one_worker : public coordination_base {
public:
    explicit observe_on_one_worker(schedulers::scheduler sc)
        : factory(std::move(sc)) {}
    schedulers::scheduler::clock_type::time_point now() const { return factory.now(); }
    coordinator create_coordinator(composite_subscription cs = composite_subscription()) const {
        return coordinator(factory.create_worker(std::move(cs)));
    }

private:
    schedulers::scheduler factory;
};

inline identity_one_worker identity_current_thread() {
    static const identity_one_worker instance(schedulers::make_current_thread());
    return instance;
}

inline observe_on_one_worker observe_on_new_thread() {
    static const observe_on_one_worker instance(schedulers::make_new_thread());
    return instance;
}

} // namespace rxcpp
