#pragma once

#include "tests/support/EventLoop.h"

#include <exception>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <vector>

namespace EditorService::Testing {

// What a stream delivered, from whichever thread it delivered it.
struct Collected {
    std::mutex mutex;
    std::vector<nlohmann::json> values;
    std::exception_ptr error;
    bool completed = false;

    bool ended() {
        std::lock_guard<std::mutex> lock(mutex);
        return completed || error;
    }
    // The values so far, while others may still come.
    std::vector<nlohmann::json> valuesNow() {
        std::lock_guard<std::mutex> lock(mutex);
        return values;
    }
};

inline std::shared_ptr<Collected> collect(const rxcpp::observable<nlohmann::json>& stream) {
    auto collected = std::make_shared<Collected>();
    stream.subscribe(
        [collected](const nlohmann::json& value) {
            std::lock_guard<std::mutex> lock(collected->mutex);
            collected->values.push_back(value);
        },
        [collected](std::exception_ptr error) {
            std::lock_guard<std::mutex> lock(collected->mutex);
            collected->error = error;
        },
        [collected] {
            std::lock_guard<std::mutex> lock(collected->mutex);
            collected->completed = true;
        });
    return collected;
}

// Subscribes and runs the main thread's loop until the stream has ended.
inline std::shared_ptr<Collected> collectToEnd(const rxcpp::observable<nlohmann::json>& stream) {
    auto collected = collect(stream);
    spinUntil([collected] { return collected->ended(); });
    return collected;
}

} // namespace EditorService::Testing
