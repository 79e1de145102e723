#include "platform/rxapp/LimitedResource.h"

#include "platform/rxapp/RxApp.h"

#include <deque>
#include <mutex>

namespace Velmor::rx {

using Job = std::function<rxcpp::observable<int>()>;

// Shared with the queued pumps and the running jobs' ends, which may outlive the resource.
class LimitedResource::State : public std::enable_shared_from_this<State> {
public:
    explicit State(int limit)
        : limit(limit)
        , mainThread(RxApp::instance()->mainThread().create_coordinator().get_worker()) {}

    void queue(Job job) {
        std::lock_guard<std::mutex> guard(lock);
        if (closed)
            return;
        waiting.push_back(std::move(job));
        schedulePumpLocked();
    }

    void close() {
        std::deque<Job> dropped;
        {
            std::lock_guard<std::mutex> guard(lock);
            closed = true;
            dropped.swap(waiting);
        }
        jobs.unsubscribe();
        mainThread.unsubscribe();
    }

    rxcpp::composite_subscription jobs;

private:
    void schedulePumpLocked() {
        if (pumpScheduled || pumping || running >= limit || waiting.empty())
            return;
        pumpScheduled = true;
        mainThread.schedule(
            [self = shared_from_this()](const rxcpp::schedulers::schedulable&) { self->pump(); });
    }

    // Starts jobs while places are free. It loops rather than recursing, so jobs that end inside
    // their own start neither deepen the stack nor cost a turn of the event loop each.
    void pump() {
        std::unique_lock<std::mutex> guard(lock);
        pumpScheduled = false;
        if (pumping) // a job spun a nested event loop; the outer pump carries on
            return;
        pumping = true;
        while (!closed && running < limit && !waiting.empty()) {
            Job job = std::move(waiting.front());
            waiting.pop_front();
            ++running;
            guard.unlock();
            start(job);
            job = nullptr;
            guard.lock();
        }
        pumping = false;
    }

    void start(const Job& job) {
        rxcpp::observable<int> done;
        try {
            done = job();
        } catch (...) {
            finish();
            return;
        }
        auto self = shared_from_this();
        done.subscribe([](int) {}, [self](std::exception_ptr) { self->finish(); },
                       [self] { self->finish(); });
    }

    void finish() {
        std::lock_guard<std::mutex> guard(lock);
        --running;
        if (!closed)
            schedulePumpLocked();
    }

    const int limit;
    rxcpp::schedulers::worker mainThread;
    std::mutex lock;
    std::deque<Job> waiting;
    int running = 0;
    bool pumpScheduled = false;
    bool pumping = false;
    bool closed = false;
};

LimitedResource::LimitedResource(int limit)
    : limit(limit) {
    if (limit < 1)
        return;
    state = std::make_shared<State>(limit);
    // The job is taken by value: the subject hands a job it was given by move straight on.
    jobQueue.get_observable().subscribe(
        state->jobs, [s = state](Job job) { s->queue(std::move(job)); }, [](std::exception_ptr) {});
}

LimitedResource::~LimitedResource() {
    if (state)
        state->close();
}

} // namespace Velmor::rx
