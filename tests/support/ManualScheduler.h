#pragma once

#include <rxcpp/rx.hpp>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace EditorService::Testing {

// A scheduler on a clock that only the test moves: actions run on the test's thread, inside
// advanceTo/advanceBy, in time order and first in first out for equal times. Every worker of
// one scheduler shares its clock and its queue. Time starts at zero(). It runs schedulables the
// bundled core's way, so only tests built on the bundled core (EDITORSERVICE_RX_BUNDLED) use it.
class ManualScheduler : public rxcpp::schedulers::scheduler_interface {
    using time_point = clock_type::time_point;

    struct Shared {
        std::mutex lock;
        time_point now = zero();
        std::uint64_t nextOrder = 0;
        std::map<std::pair<time_point, std::uint64_t>, rxcpp::schedulers::schedulable> queue;
    };

    class Worker : public rxcpp::schedulers::worker_interface {
    public:
        explicit Worker(std::shared_ptr<Shared> s)
            : shared(std::move(s)) {}
        clock_type::time_point now() const override {
            std::lock_guard<std::mutex> guard(shared->lock);
            return shared->now;
        }
        void schedule(const rxcpp::schedulers::schedulable& scbl) const override {
            schedule(now(), scbl);
        }
        void schedule(clock_type::time_point when,
                      const rxcpp::schedulers::schedulable& scbl) const override {
            std::lock_guard<std::mutex> guard(shared->lock);
            shared->queue.emplace(std::make_pair(when, shared->nextOrder++), scbl);
        }

    private:
        std::shared_ptr<Shared> shared;
    };

public:
    static time_point zero() { return time_point(std::chrono::hours(1)); }

    // Queued actions hold their workers, which hold the queue: let go of them with the scheduler.
    ~ManualScheduler() override {
        decltype(shared->queue) dropped;
        std::lock_guard<std::mutex> guard(shared->lock);
        dropped.swap(shared->queue);
    }

    clock_type::time_point now() const override {
        std::lock_guard<std::mutex> guard(shared->lock);
        return shared->now;
    }

    rxcpp::schedulers::worker create_worker(rxcpp::composite_subscription cs) const override {
        return rxcpp::schedulers::worker(std::move(cs), std::make_shared<Worker>(shared));
    }

    // Runs every action due up to `until`, moving the clock to each one's time, then to `until`.
    void advanceTo(time_point until) {
        for (;;) {
            std::unique_lock<std::mutex> guard(shared->lock);
            auto first = shared->queue.begin();
            if (first == shared->queue.end() || first->first.first > until) {
                shared->now = std::max(shared->now, until);
                return;
            }
            shared->now = std::max(shared->now, first->first.first);
            auto action = std::move(first->second);
            shared->queue.erase(first);
            guard.unlock();
            action();
        }
    }

    void advanceBy(clock_type::duration d) { advanceTo(now() + d); }

    // Milliseconds since zero(), for readable expectations.
    long long elapsedMs() const {
        return std::chrono::duration_cast<std::chrono::milliseconds>(now() - zero()).count();
    }

    std::size_t pending() const {
        std::lock_guard<std::mutex> guard(shared->lock);
        return shared->queue.size();
    }

private:
    std::shared_ptr<Shared> shared = std::make_shared<Shared>();
};

} // namespace EditorService::Testing
