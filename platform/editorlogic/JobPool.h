#pragma once

#include <functional>
#include <memory>

namespace Task {

// Runs jobs side by side, each on a thread of its own: a job waits for no other, and the pool
// starts a new thread whenever every thread it has is busy, so it has as many as the most jobs
// ever run at once, and keeps them for later jobs. onBusy is called on a pool thread before a
// job starts while none runs, onIdle there when the last running job has ended and none is
// queued; both are called with the pool's lock held and must not submit. A job that throws ends
// alone. The destructor waits for the running jobs, drops the jobs still queued and calls
// neither function any more.
class JobPool {
public:
    JobPool(std::function<void()> onBusy, std::function<void()> onIdle);
    JobPool(const JobPool&) = delete;
    JobPool& operator=(const JobPool&) = delete;
    ~JobPool();

    void submit(std::function<void()> job);
    // The threads started so far.
    int threadCount() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Task
