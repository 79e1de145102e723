#pragma once

#include <rxcpp/rx.hpp>

#include <functional>
#include <memory>

namespace Velmor::rx {

// Runs the jobs handed in through jobQueue, at most `limit` at a time, starting them in the
// order they were queued. A job runs from the call of its function until the observable it
// returned completes or fails; a job whose function throws counts as failed. Jobs start on a
// later turn of the main thread's event loop (RxApp::mainThread()), never inside the on_next that
// queued them, and may be queued from any thread. With a limit below 1 nothing listens to
// jobQueue.
//
// Destroying it drops the jobs still queued, which never start; running jobs go on by themselves
// and their end changes nothing.
class LimitedResource {
public:
    explicit LimitedResource(int limit);
    ~LimitedResource();
    LimitedResource(const LimitedResource&) = delete;
    LimitedResource& operator=(const LimitedResource&) = delete;

    template <class Start> auto useFor(Start start);

    int limit;
    rxcpp::subjects::subject<std::function<rxcpp::observable<int>()>> jobQueue;

private:
    class State;
    std::shared_ptr<State> state;
};

} // namespace Velmor::rx
