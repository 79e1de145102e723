#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace EditorService::Testing {

// What happened, in order, from any thread.
struct Journal {
    std::mutex mutex;
    std::vector<std::string> events;

    void add(const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
    }
    std::vector<std::string> snapshot() {
        std::lock_guard<std::mutex> lock(mutex);
        return events;
    }
};

} // namespace EditorService::Testing
