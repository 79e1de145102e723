#pragma once

#include "tests/support/FailedWith.h"

#include <rxcpp/rx.hpp>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

namespace EditorService::Testing {

// Writes what a stream signals as readable lines ("on_next(1)", "on_error(boom)",
// "on_completed"), optionally stamped with a time, from any thread.
class Recorder {
public:
    Recorder() = default;
    explicit Recorder(std::function<long long()> clockMs)
        : clockMs(std::move(clockMs)) {}

    template <class T> rxcpp::subscriber<T> subscriber(rxcpp::composite_subscription cs = {}) {
        return rxcpp::make_subscriber<T>(
            std::move(cs),
            [this](const T& v) {
                std::ostringstream line;
                line << "on_next(" << v << ")";
                add(line.str());
            },
            [this](std::exception_ptr e) { add("on_error(" + failureText(e) + ")", true); },
            [this] { add("on_completed", true); });
    }

    // Notifies while holding the lock: a waiter that wakes may destroy the recorder at once.
    void add(const std::string& line, bool terminal = false) {
        std::lock_guard<std::mutex> guard(lock);
        log.push_back(clockMs ? std::to_string(clockMs()) + " " + line : line);
        ends += terminal ? 1 : 0;
        changed.notify_all();
    }

    std::vector<std::string> lines() const {
        std::lock_guard<std::mutex> guard(lock);
        return log;
    }

    int terminals() const {
        std::lock_guard<std::mutex> guard(lock);
        return ends;
    }

    bool waitForTerminal(std::chrono::seconds limit = std::chrono::seconds(60)) {
        std::unique_lock<std::mutex> guard(lock);
        return changed.wait_for(guard, limit, [this] { return ends > 0; });
    }

    bool waitForLines(std::size_t count, std::chrono::seconds limit = std::chrono::seconds(60)) {
        std::unique_lock<std::mutex> guard(lock);
        return changed.wait_for(guard, limit, [&] { return log.size() >= count; });
    }

private:
    std::function<long long()> clockMs;
    mutable std::mutex lock;
    std::condition_variable changed;
    std::vector<std::string> log;
    int ends = 0;
};

} // namespace EditorService::Testing
