#pragma once

#include <functional>
#include <memory>

namespace Task {

// Jobs handed over from any thread and taken in the order they came. Every job ends one way,
// once: it is taken, or it is dropped, when the queue closes before anybody took it or when it
// comes after the close. A taken job counts as running until it has returned and every copy of
// it is gone; the copies may outlive the queue.
class JobQueue {
public:
    JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;
    // Closes, as close() does.
    ~JobQueue();

    // Queues the job. `dropped`, which may be empty, is called instead of the job when the
    // queue closes before the job was taken; after close(), at once, on the calling thread.
    // True when a taker waiting in waitAndTake() is free for the job.
    bool push(std::function<void()> job, std::function<void()> dropped = nullptr);
    // The next job, or an empty function when none is queued now.
    std::function<void()> take();
    // The next job once there is one; an empty function once the queue is closed.
    std::function<void()> waitAndTake();
    // Whether no job is queued and none is running.
    bool isEmpty() const;

    // Takes back the jobs nobody took and lets go of what they hold, waits for the taken jobs
    // still running, then calls the `dropped` of each job taken back, in the order they came,
    // on the calling thread, so that no job's news of being dropped overtakes a running job's
    // end. A `dropped` that throws ends alone. Later calls drop nothing more. A job of this
    // queue must not call it: it would wait for itself.
    void close();

private:
    struct State;
    std::shared_ptr<State> state;
};

} // namespace Task
