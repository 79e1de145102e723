#include "platform/editorlogic/JobPool.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace Task {

class JobPool::Private {
public:
    std::function<void()> onBusy;
    std::function<void()> onIdle;
    mutable std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> jobs;
    std::vector<std::thread> threads;
    int waitingThreads = 0;
    int running = 0;
    bool busy = false;
    bool stopping = false;

    void run() {
        std::unique_lock<std::mutex> lock(mutex);
        while (true) {
            ++waitingThreads;
            wake.wait(lock, [this] { return stopping || !jobs.empty(); });
            --waitingThreads;
            if (stopping)
                return;
            auto job = std::move(jobs.front());
            jobs.pop_front();
            ++running;
            // A job queued as the last one ended starts a run that never rested.
            if (!busy) {
                busy = true;
                onBusy();
            }
            lock.unlock();
            runOne(job);
            job = nullptr;
            lock.lock();
            if (--running == 0 && jobs.empty() && !stopping) {
                busy = false;
                onIdle();
            }
        }
    }

    static void runOne(const std::function<void()>& job) {
        try {
            job();
        } catch (...) {
        }
    }
};

JobPool::JobPool(std::function<void()> onBusy, std::function<void()> onIdle)
    : d(std::make_unique<Private>()) {
    d->onBusy = std::move(onBusy);
    d->onIdle = std::move(onIdle);
}

JobPool::~JobPool() {
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->stopping = true;
        d->jobs.clear();
    }
    d->wake.notify_all();
    for (auto& thread : d->threads)
        thread.join();
}

void JobPool::submit(std::function<void()> job) {
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->jobs.push_back(std::move(job));
        // A waiting thread takes one queued job; more jobs than waiting threads need new ones.
        if (int(d->jobs.size()) > d->waitingThreads)
            d->threads.emplace_back(&Private::run, d.get());
    }
    d->wake.notify_one();
}

int JobPool::threadCount() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return int(d->threads.size());
}

} // namespace Task
