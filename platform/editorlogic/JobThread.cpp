#include "platform/editorlogic/JobThread.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace Task {

class JobThread::Private {
public:
    struct Job {
        std::function<void()> run;
        std::function<void()> dropped;
    };

    std::function<void()> onBusy;
    std::function<void()> onIdle;
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<Job> jobs;
    bool stopping = false;
    std::thread thread;

    void run() {
        std::unique_lock<std::mutex> lock(mutex);
        while (true) {
            wake.wait(lock, [this] { return stopping || !jobs.empty(); });
            if (stopping)
                return;
            lock.unlock();
            onBusy();
            lock.lock();
            while (!jobs.empty() && !stopping) {
                auto job = std::move(jobs.front().run);
                jobs.pop_front();
                lock.unlock();
                runOne(job);
                lock.lock();
            }
            if (stopping)
                return;
            lock.unlock();
            onIdle();
            lock.lock();
        }
    }

    static void runOne(const std::function<void()>& job) {
        try {
            job();
        } catch (...) {
        }
    }
};

JobThread::JobThread(std::function<void()> onBusy, std::function<void()> onIdle)
    : d(std::make_unique<Private>()) {
    d->onBusy = std::move(onBusy);
    d->onIdle = std::move(onIdle);
}

JobThread::~JobThread() {
    std::deque<Private::Job> released;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->stopping = true;
        released.swap(d->jobs);
    }
    d->wake.notify_all();
    // What a queued job holds goes before the wait: the running job may be waiting for it.
    for (auto& job : released)
        job.run = nullptr;
    if (d->thread.joinable())
        d->thread.join();
    // Told only now, so that a dropped job's news never overtakes the running job's.
    for (const auto& job : released) {
        if (job.dropped)
            Private::runOne(job.dropped);
    }
}

void JobThread::submit(std::function<void()> job) {
    submit(std::move(job), nullptr);
}

void JobThread::submit(std::function<void()> job, std::function<void()> dropped) {
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->jobs.push_back({std::move(job), std::move(dropped)});
        if (!d->thread.joinable())
            d->thread = std::thread(&Private::run, d.get());
    }
    d->wake.notify_all();
}

} // namespace Task
