#include "platform/render/Runner.h"

#include "platform/av/Frame.h"
#include "platform/render/Cancelled.h"
#include "platform/render/FrameSink.h"

#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace Velmor::Render {
namespace {

// One connection's thread: the source's frames into the sink, checking the stop once a frame.
void pass(FrameSource& source, FrameSink& sink, const Stop& stop) {
    AV::Frame frame;
    while (source.next(frame)) {
        if (stop.requested())
            throw Cancelled();
        if (!sink.write(frame)) {
            source.finish();
            return;
        }
    }
    sink.close();
}

} // namespace

class Runner::Private {
public:
    Stop stop;
    std::vector<std::unique_ptr<FrameQueue>> queues;
    std::vector<std::unique_ptr<FrameSource>> sources;
    std::vector<std::function<void()>> connections;
    std::vector<std::thread> threads;
    bool ran = false;

    // Guards queues, failure and cancelled.
    mutable std::mutex mutex;
    std::exception_ptr failure;
    bool cancelled = false;

    // Declared last: the stop may call it until it is gone.
    std::unique_ptr<Stop::Callback> onStop;

    void cancelQueues() {
        std::lock_guard<std::mutex> lock(mutex);
        for (const auto& queue : queues)
            queue->cancel();
    }

    void fail(std::exception_ptr error) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (!failure && !stop.requested())
                failure = error;
        }
        stop.request();
    }

    void start() {
        for (const auto& connection : connections) {
            threads.emplace_back([this, &connection] {
                try {
                    connection();
                } catch (...) {
                    fail(std::current_exception());
                }
            });
        }
    }

    void joinAll() {
        for (std::thread& thread : threads)
            thread.join();
        threads.clear();
    }

    void throwOutcome() {
        std::lock_guard<std::mutex> lock(mutex);
        if (cancelled)
            throw Cancelled();
        if (failure)
            std::rethrow_exception(failure);
    }
};

Runner::Runner()
    : d(std::make_unique<Private>()) {
    d->onStop = std::make_unique<Stop::Callback>(d->stop, [this] { d->cancelQueues(); });
}

Runner::~Runner() = default;

const Stop& Runner::stop() const {
    return d->stop;
}

void Runner::connect(FrameSource& source, FrameSink& sink) {
    d->connections.emplace_back([&source, &sink, this] { pass(source, sink, d->stop); });
}

FrameQueue& Runner::addQueue(FrameSource& source, std::size_t capacity) {
    auto queue = std::make_unique<FrameQueue>(capacity);
    FrameQueue& made = *queue;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->queues.push_back(std::move(queue));
    }
    if (d->stop.requested())
        made.cancel();
    connect(source, made);
    return made;
}

void Runner::keep(std::unique_ptr<FrameSource> source) {
    d->sources.push_back(std::move(source));
}

void Runner::run() {
    if (d->ran)
        throw std::logic_error("A render runs once");
    d->ran = true;
    if (!d->stop.requested()) {
        try {
            d->start();
        } catch (...) {
            // No thread for a stage: the others stop, and the render fails with that.
            d->fail(std::current_exception());
        }
        d->joinAll();
    }
    d->throwOutcome();
}

void Runner::cancel() {
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->cancelled = true;
    }
    d->stop.request();
}

bool Runner::cancelled() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->cancelled;
}

} // namespace Velmor::Render
