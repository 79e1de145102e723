#pragma once

#include <exception>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <thread>
#include <vector>

namespace EditorService::Testing {

// Subscribes to a stream of JSON values and keeps what the subscriber saw, and on which threads.
// Safe to read from the test while other threads deliver. Destroying it unsubscribes.
class StreamRecorder {
public:
    explicit StreamRecorder(const rxcpp::observable<nlohmann::json>& stream)
        : log(std::make_shared<Log>()) {
        const auto log = this->log;
        subscription = stream.subscribe(
            [log](const nlohmann::json& value) {
                const std::lock_guard<std::mutex> lock(log->mutex);
                log->values.push_back(value);
                log->valueThreads.push_back(std::this_thread::get_id());
            },
            [log](std::exception_ptr error) {
                const std::lock_guard<std::mutex> lock(log->mutex);
                log->error = error;
                log->valuesAtEnd = static_cast<int>(log->values.size());
                log->endThread = std::this_thread::get_id();
                ++log->ends;
            },
            [log]() {
                const std::lock_guard<std::mutex> lock(log->mutex);
                log->completed = true;
                log->valuesAtEnd = static_cast<int>(log->values.size());
                log->endThread = std::this_thread::get_id();
                ++log->ends;
            });
    }

    StreamRecorder(const StreamRecorder&) = delete;
    StreamRecorder& operator=(const StreamRecorder&) = delete;

    ~StreamRecorder() { subscription.unsubscribe(); }

    std::vector<nlohmann::json> values() const {
        const std::lock_guard<std::mutex> lock(log->mutex);
        return log->values;
    }

    std::vector<std::thread::id> valueThreads() const {
        const std::lock_guard<std::mutex> lock(log->mutex);
        return log->valueThreads;
    }

    bool isCompleted() const {
        const std::lock_guard<std::mutex> lock(log->mutex);
        return log->completed;
    }

    std::exception_ptr error() const {
        const std::lock_guard<std::mutex> lock(log->mutex);
        return log->error;
    }

    bool hasEnded() const { return ends() > 0; }

    // Completions and errors together: a stream ends once.
    int ends() const {
        const std::lock_guard<std::mutex> lock(log->mutex);
        return log->ends;
    }

    // How many values had arrived when the stream ended.
    int valuesAtEnd() const {
        const std::lock_guard<std::mutex> lock(log->mutex);
        return log->valuesAtEnd;
    }

    std::thread::id endThread() const {
        const std::lock_guard<std::mutex> lock(log->mutex);
        return log->endThread;
    }

private:
    struct Log {
        std::mutex mutex;
        std::vector<nlohmann::json> values;
        std::vector<std::thread::id> valueThreads;
        bool completed = false;
        std::exception_ptr error;
        int ends = 0;
        int valuesAtEnd = 0;
        std::thread::id endThread;
    };

    std::shared_ptr<Log> log;
    rxcpp::composite_subscription subscription;
};

} // namespace EditorService::Testing
