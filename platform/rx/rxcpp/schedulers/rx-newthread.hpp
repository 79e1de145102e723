#pragma once

#include "rx-queue.hpp"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace rxcpp {
namespace schedulers {

// Each worker is a thread of its own that runs the worker's actions in time order and ends
// with the worker's lifetime. Ending it from another thread waits for the action in flight.
class new_thread : public scheduler_interface {
    struct loop_state {
        std::mutex lock;
        std::condition_variable wake;
        detail::schedule_queue queue;
        bool stopped = false;
        std::thread thread;

        void run() {
            std::unique_lock<std::mutex> guard(lock);
            while (!stopped) {
                if (queue.empty()) {
                    wake.wait(guard);
                    continue;
                }
                // A copy: the wait releases the lock, and a schedule() may grow the queue.
                const auto due = queue.top().when;
                if (due > clock_type::now()) {
                    wake.wait_until(guard, due);
                    continue;
                }
                {
                    auto next = queue.pop();
                    guard.unlock();
                    next.what();
                }
                guard.lock();
            }
        }

        void stop() {
            std::vector<detail::schedule_queue::item> dropped;
            {
                std::lock_guard<std::mutex> guard(lock);
                stopped = true;
                dropped = queue.take_all();
            }
            wake.notify_one();
            dropped.clear();
            if (thread.get_id() == std::this_thread::get_id())
                thread.detach();
            else
                thread.join();
        }
    };

    class new_worker : public worker_interface {
    public:
        explicit new_worker(std::shared_ptr<loop_state> s)
            : state(std::move(s)) {}
        clock_type::time_point now() const override { return clock_type::now(); }
        void schedule(const schedulable& scbl) const override { schedule(now(), scbl); }
        void schedule(clock_type::time_point when, const schedulable& scbl) const override {
            {
                std::lock_guard<std::mutex> guard(state->lock);
                if (state->stopped)
                    return;
                state->queue.push(when, scbl);
            }
            state->wake.notify_one();
        }

    private:
        std::shared_ptr<loop_state> state;
    };

public:
    clock_type::time_point now() const override { return clock_type::now(); }
    worker create_worker(composite_subscription cs) const override {
        auto state = std::make_shared<loop_state>();
        state->thread = std::thread([state] { state->run(); });
        cs.add([state] { state->stop(); });
        return worker(std::move(cs), std::make_shared<new_worker>(state));
    }
};

inline scheduler make_new_thread() {
    return make_scheduler<new_thread>();
}

} // namespace schedulers
} // namespace rxcpp
