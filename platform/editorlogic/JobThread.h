#pragma once

#include <functional>
#include <memory>

namespace Task {

// Runs jobs one after another on a thread of its own, started with the first job. onBusy is
// called on that thread before the first job of a run, onIdle there when the queue has run
// dry. A job that throws ends alone. The destructor releases the jobs still queued unrun,
// waits for the running job, then calls the `dropped` function of each job it released, in the
// order they came, on the destroying thread; it calls neither onBusy nor onIdle any more.
class JobThread {
public:
    JobThread(std::function<void()> onBusy, std::function<void()> onIdle);
    JobThread(const JobThread&) = delete;
    JobThread& operator=(const JobThread&) = delete;
    ~JobThread();

    void submit(std::function<void()> job);
    // Exactly one of `job` and `dropped` is called: `dropped` when the thread ends before the
    // job ran. A `dropped` that throws ends alone.
    void submit(std::function<void()> job, std::function<void()> dropped);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Task
