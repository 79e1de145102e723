#include "media/ProgressPacer.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace EditorService {

class ProgressPacer::Private {
public:
    Emit emit;
    std::mutex mutex;
    std::condition_variable wake;
    Export::ExportProgress latest;
    bool news = false;
    bool stopping = false;
    Clock::time_point lastEmitted = Clock::now();
    std::thread thread;

    void run() {
        std::unique_lock<std::mutex> lock(mutex);
        while (!stopping) {
            const auto when = due(lastEmitted, news);
            if (Clock::now() < when) {
                wake.wait_until(lock, when);
                continue;
            }
            const auto progress = latest;
            news = false;
            lastEmitted = Clock::now();
            lock.unlock();
            emit(progress);
            lock.lock();
        }
    }
};

ProgressPacer::ProgressPacer(Emit emit)
    : d(std::make_unique<Private>()) {
    d->emit = std::move(emit);
    d->thread = std::thread(&Private::run, d.get());
}

ProgressPacer::~ProgressPacer() {
    stop();
}

void ProgressPacer::update(const Export::ExportProgress& progress) {
    bool hadNews = false;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->latest = progress;
        hadNews = d->news;
        d->news = true;
    }
    // News brings the next value forward; more news before it changes nothing.
    if (!hadNews)
        d->wake.notify_one();
}

void ProgressPacer::stop() {
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->stopping = true;
    }
    d->wake.notify_one();
    if (d->thread.joinable() && d->thread.get_id() != std::this_thread::get_id())
        d->thread.join();
}

ProgressPacer::Clock::time_point ProgressPacer::due(Clock::time_point lastEmitted, bool news) {
    return lastEmitted + (news ? minimumGap : maximumGap);
}

} // namespace EditorService
