#include "platform/editorlogic/JobQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>

namespace Task {

// Shared with the jobs handed out, which may outlive the queue.
struct JobQueue::State {
    struct Job {
        std::function<void()> run;
        std::function<void()> dropped;
    };

    mutable std::mutex mutex;
    std::condition_variable arrived;
    std::condition_variable settled;
    std::deque<Job> jobs;
    int running = 0;
    int waitingTakers = 0;
    bool closed = false;
};

namespace {

// Counts a taken job as running for as long as it lives; made with the queue's lock held.
template <class State> class Running {
public:
    explicit Running(std::shared_ptr<State> shared)
        : state(std::move(shared)) {
        ++state->running;
    }
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

// The job as it is handed out: what the job holds goes before it stops counting as running.
template <class State> struct Taken {
    Taken(std::shared_ptr<State> state, std::function<void()> job)
        : running(std::move(state))
        , job(std::move(job)) {}

    Running<State> running;
    std::function<void()> job;
};

void tell(const std::function<void()>& dropped) {
    if (!dropped)
        return;
    try {
        dropped();
    } catch (...) {
    }
}

// Takes the first job, which must be there, with the lock held.
template <class State> std::function<void()> takeFirst(const std::shared_ptr<State>& state) {
    auto taken = std::make_shared<Taken<State>>(state, std::move(state->jobs.front().run));
    state->jobs.pop_front();
    return [taken] { taken->job(); };
}

} // namespace

JobQueue::JobQueue()
    : state(std::make_shared<State>()) {}

JobQueue::~JobQueue() {
    close();
}

bool JobQueue::push(std::function<void()> job, std::function<void()> dropped) {
    bool closed = false;
    bool taker = false;
    {
        std::lock_guard<std::mutex> lock(state->mutex);
        closed = state->closed;
        if (!closed) {
            state->jobs.push_back({std::move(job), std::move(dropped)});
            taker = int(state->jobs.size()) <= state->waitingTakers;
        }
    }
    if (!closed) {
        state->arrived.notify_one();
        return taker;
    }
    job = nullptr;
    tell(dropped);
    return false;
}

std::function<void()> JobQueue::take() {
    std::lock_guard<std::mutex> lock(state->mutex);
    if (state->jobs.empty())
        return {};
    return takeFirst(state);
}

std::function<void()> JobQueue::waitAndTake() {
    std::unique_lock<std::mutex> lock(state->mutex);
    ++state->waitingTakers;
    state->arrived.wait(lock, [this] { return state->closed || !state->jobs.empty(); });
    --state->waitingTakers;
    if (state->closed)
        return {};
    return takeFirst(state);
}

bool JobQueue::isEmpty() const {
    std::lock_guard<std::mutex> lock(state->mutex);
    return state->jobs.empty() && state->running == 0;
}

void JobQueue::close() {
    std::deque<State::Job> takenBack;
    {
        std::lock_guard<std::mutex> lock(state->mutex);
        state->closed = true;
        takenBack.swap(state->jobs);
    }
    state->arrived.notify_all();
    // Let go of first, unlocked: a running job may wait for what a queued one holds.
    for (auto& job : takenBack)
        job.run = nullptr;
    {
        std::unique_lock<std::mutex> lock(state->mutex);
        state->settled.wait(lock, [this] { return state->running == 0; });
    }
    for (const auto& job : takenBack)
        tell(job.dropped);
}

} // namespace Task
