#include "platform/editorlogic/Workers.h"

#include "platform/editorlogic/JobQueue.h"

#include <mutex>
#include <thread>
#include <vector>

namespace Task {

class Workers::Private {
public:
    int maxThreads = 0;
    std::function<void()> onBusy;
    std::function<void()> onIdle;
    JobQueue queue;

    std::mutex signalLock;
    bool busy = false;
    bool silenced = false;

    mutable std::mutex threadsLock;
    std::vector<std::thread> threads;
    bool closing = false;

    void work() {
        while (auto job = queue.waitAndTake()) {
            signalBusy();
            runAlone(job);
            // Gone before the idle test, which counts a job as running while a copy lives.
            job = nullptr;
            signalIdleWhenDone();
        }
    }

    void signalBusy() {
        std::lock_guard<std::mutex> lock(signalLock);
        if (busy || silenced)
            return;
        busy = true;
        onBusy();
    }

    void signalIdleWhenDone() {
        std::lock_guard<std::mutex> lock(signalLock);
        if (!busy || silenced || !queue.isEmpty())
            return;
        busy = false;
        onIdle();
    }

    void startThreadIfRoom() {
        std::lock_guard<std::mutex> lock(threadsLock);
        if (closing)
            return;
        if (maxThreads > 0 && int(threads.size()) >= maxThreads)
            return;
        threads.emplace_back(&Private::work, this);
    }

    static void runAlone(const std::function<void()>& job) {
        try {
            job();
        } catch (...) {
        }
    }
};

Workers::Workers(int maxThreads, std::function<void()> onBusy, std::function<void()> onIdle)
    : d(std::make_unique<Private>()) {
    d->maxThreads = maxThreads;
    d->onBusy = std::move(onBusy);
    d->onIdle = std::move(onIdle);
}

Workers::~Workers() {
    {
        // Taken after a signal under way, if any, has returned.
        std::lock_guard<std::mutex> lock(d->signalLock);
        d->silenced = true;
    }
    {
        std::lock_guard<std::mutex> lock(d->threadsLock);
        d->closing = true;
    }
    d->queue.close();
    for (auto& thread : d->threads)
        thread.join();
}

void Workers::submit(std::function<void()> job, std::function<void()> dropped) {
    if (!d->queue.push(std::move(job), std::move(dropped)))
        d->startThreadIfRoom();
}

int Workers::threadCount() const {
    std::lock_guard<std::mutex> lock(d->threadsLock);
    return int(d->threads.size());
}

} // namespace Task
