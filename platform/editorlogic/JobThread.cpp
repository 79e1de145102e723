#include "platform/editorlogic/JobThread.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace Task {

class JobThread::Private {
public:
    std::function<void()> onBusy;
    std::function<void()> onIdle;
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<std::function<void()>> jobs;
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
                auto job = std::move(jobs.front());
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
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->stopping = true;
        d->jobs.clear();
    }
    d->wake.notify_all();
    if (d->thread.joinable())
        d->thread.join();
}

void JobThread::submit(std::function<void()> job) {
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->jobs.push_back(std::move(job));
        if (!d->thread.joinable())
            d->thread = std::thread(&Private::run, d.get());
    }
    d->wake.notify_all();
}

} // namespace Task
