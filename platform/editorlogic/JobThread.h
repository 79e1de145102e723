#pragma once

#include <functional>
#include <memory>

namespace Task {

// Runs jobs one after another on a thread of its own, started with the first job. onBusy is
// called on that thread before the first job of a run, onIdle there when the queue has run
// dry. A job that throws ends alone. The destructor waits for the running job, drops the jobs
// still queued and calls neither function any more.
class JobThread {
public:
    JobThread(std::function<void()> onBusy, std::function<void()> onIdle);
    JobThread(const JobThread&) = delete;
    JobThread& operator=(const JobThread&) = delete;
    ~JobThread();

    void submit(std::function<void()> job);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Task
