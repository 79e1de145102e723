#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace EditorService::Testing {

// What happened, in order, from any thread, with the thread each happened on.
struct Journal {
    std::mutex mutex;
    std::vector<std::string> events;
    std::vector<std::thread::id> threads;

    void add(const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
        threads.push_back(std::this_thread::get_id());
    }
    std::vector<std::string> snapshot() {
        std::lock_guard<std::mutex> lock(mutex);
        return events;
    }
    // The thread of the first event of that name; a default id when there was none.
    std::thread::id threadOf(const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        for (std::size_t i = 0; i < events.size(); ++i) {
            if (events[i] == event)
                return threads[i];
        }
        return {};
    }
};

} // namespace EditorService::Testing
