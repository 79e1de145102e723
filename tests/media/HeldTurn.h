#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>

namespace EditorService::Testing {

// A job of the test's own that keeps a controller's one thread until released, so that the
// work handed to the controller after it waits its turn. Release it before it goes.
class HeldTurn {
public:
    std::function<void()> job() {
        return [this] {
            std::unique_lock<std::mutex> lock(mutex);
            released.wait(lock, [this] { return free; });
        };
    }
    void release() {
        std::lock_guard<std::mutex> lock(mutex);
        free = true;
        released.notify_all();
    }

private:
    std::mutex mutex;
    std::condition_variable released;
    bool free = false;
};

} // namespace EditorService::Testing
