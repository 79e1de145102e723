#pragma once

#include "rx-queue.hpp"

#include <thread>

namespace rxcpp {
namespace schedulers {

// Runs an action at once on the calling thread, unless that thread is already running one of
// this scheduler's actions: then it queues it behind (a trampoline), so recursion stays flat.
class current_thread : public scheduler_interface {
    struct trampoline {
        detail::schedule_queue queue;
        bool running = false;
    };

    static trampoline& this_thread_trampoline() {
        thread_local trampoline t;
        return t;
    }

    class current_worker : public worker_interface {
    public:
        clock_type::time_point now() const override { return clock_type::now(); }
        void schedule(const schedulable& scbl) const override { schedule(now(), scbl); }
        void schedule(clock_type::time_point when, const schedulable& scbl) const override {
            auto& t = this_thread_trampoline();
            t.queue.push(when, scbl);
            if (t.running)
                return;
            struct reset {
                trampoline& t;
                ~reset() {
                    t.running = false;
                    t.queue.take_all();
                }
            } guard{t};
            t.running = true;
            while (!t.queue.empty()) {
                auto next = t.queue.pop();
                std::this_thread::sleep_until(next.when);
                next.what();
            }
        }
    };

public:
    clock_type::time_point now() const override { return clock_type::now(); }
    worker create_worker(composite_subscription cs) const override {
        return worker(std::move(cs), std::make_shared<current_worker>());
    }
};

inline scheduler make_current_thread() {
    static const scheduler instance = make_scheduler<current_thread>();
    return instance;
}

} // namespace schedulers
} // namespace rxcpp
