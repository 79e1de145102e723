#pragma once

#include <functional>
#include <memory>

namespace Task {

// Runs jobs on threads of its own, taken from one JobQueue in the order they came, at most
// `maxThreads` at once; 0 allows as many as there are jobs, so that no job waits for another.
// A thread starts when a job finds none waiting and is kept for later jobs. A job that throws
// ends alone.
//
// onBusy is called before a job starts while no job was queued or running, onIdle once the
// last job has ended and none is queued, each on the worker thread that made the change. They
// alternate, onBusy first, one at a time, and are called without the queue's lock, under the
// workers' own signal lock: they may submit jobs, but must not wait for another thread that
// signals. The destructor ends the signals: once it has begun neither is called, so that
// nobody hears from workers whose owner is going (a run busy then gets no idle).
//
// The destructor closes the queue (see JobQueue::close): it waits for the running jobs, drops
// the queued ones and calls their `dropped` on the destroying thread, then ends the threads.
class Workers {
public:
    Workers(int maxThreads, std::function<void()> onBusy, std::function<void()> onIdle);
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers();

    // Exactly one of `job` and `dropped` (when given) is called: `dropped` when the workers
    // end before the job ran.
    void submit(std::function<void()> job, std::function<void()> dropped = nullptr);
    // The threads started so far.
    int threadCount() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Task
