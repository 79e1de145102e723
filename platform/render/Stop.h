#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <mutex>

namespace Velmor::Render {

// The one signal that a render stops, for its stages: they ask requested() once per frame and
// in every wait that could block (a demuxer's interrupt), and register a Callback to wake a
// wait of their own. request() and requested() may be called from any thread.
class Stop {
public:
    // Calls `call` once when the stop is requested, on the requesting thread, or at once on
    // the constructing one when it was requested already; never after the destructor. `call`
    // must not request the stop nor make or drop a Callback of the same Stop.
    class Callback {
    public:
        Callback(const Stop& stop, std::function<void()> call);
        Callback(const Callback&) = delete;
        Callback& operator=(const Callback&) = delete;
        // Waits for a call under way on another thread.
        ~Callback();

    private:
        const Stop& stop;
        std::list<std::function<void()>>::iterator entry;
    };

    Stop() = default;
    Stop(const Stop&) = delete;
    Stop& operator=(const Stop&) = delete;

    bool requested() const { return flag.load(); }
    // The first request calls every callback; later ones do nothing.
    void request();

private:
    std::atomic<bool> flag{false};
    mutable std::mutex mutex;
    mutable std::list<std::function<void()>> callbacks;
};

} // namespace Velmor::Render
