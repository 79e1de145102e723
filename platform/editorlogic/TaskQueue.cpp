#include "platform/editorlogic/TaskQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>

namespace Thumbnail {

// Shared with the tasks handed out, which may outlive the queue.
struct TaskQueue::State {
    struct Task {
        std::function<void()> run;
        std::function<void()> dropped;
    };

    std::mutex mutex;
    std::condition_variable settled;
    std::deque<Task> tasks;
    int running = 0;
    bool closed = false;
};

namespace {

// Counts a taken task as running for as long as it lives.
template <class State> class Running {
public:
    explicit Running(std::shared_ptr<State> state)
        : state(std::move(state)) {}
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
        std::lock_guard<std::mutex> lock(state->mutex);
        --state->running;
        state->settled.notify_all();
    }

private:
    std::shared_ptr<State> state;
};

void tell(const std::function<void()>& dropped) {
    if (!dropped)
        return;
    try {
        dropped();
    } catch (...) {
    }
}

} // namespace

TaskQueue::TaskQueue()
    : state(std::make_shared<State>()) {}

TaskQueue::~TaskQueue() = default;

void TaskQueue::push(std::function<void()> task, std::function<void()> dropped) {
    {
        std::lock_guard<std::mutex> lock(state->mutex);
        if (!state->closed) {
            state->tasks.push_back({std::move(task), std::move(dropped)});
            return;
        }
    }
    tell(dropped);
}

std::function<void()> TaskQueue::takeTask() {
    std::lock_guard<std::mutex> lock(state->mutex);
    if (state->tasks.empty())
        return {};
    auto task = std::move(state->tasks.front().run);
    state->tasks.pop_front();
    ++state->running;
    auto running = std::make_shared<Running<State>>(state);
    return [task = std::move(task), running] { task(); };
}

void TaskQueue::close() {
    std::deque<State::Task> takenBack;
    {
        std::unique_lock<std::mutex> lock(state->mutex);
        state->closed = true;
        takenBack.swap(state->tasks);
        for (auto& task : takenBack)
            task.run = nullptr;
        // Waited for, so that a dropped task's news never overtakes a running one's.
        state->settled.wait(lock, [this] { return state->running == 0; });
    }
    for (const auto& task : takenBack)
        tell(task.dropped);
}

} // namespace Thumbnail
