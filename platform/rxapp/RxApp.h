#pragma once

#include <rxcpp/rx.hpp>

#include <memory>

// The process's places to run reactive work. Made on first use, from any thread, once a
// QCoreApplication exists (otherwise instance() throws std::logic_error), and kept to the end of
// the process.
class RxApp {
public:
    static RxApp* instance();

    ~RxApp();
    RxApp(const RxApp&) = delete;
    RxApp& operator=(const RxApp&) = delete;

    // Work runs on the thread of the Qt main event loop, in the order it was queued, on a later
    // turn of the loop, never inside the call that queued it. It needs a running event loop.
    rxcpp::observe_on_one_worker mainThread() const;

    // Each worker made from it is a thread of its own, which ends with the worker's lifetime.
    rxcpp::observe_on_one_worker newThread() const;

    // Whether the caller runs on the thread of mainThread(); false while no QCoreApplication
    // exists.
    static bool onMainThread();

private:
    RxApp();

    class Private;
    std::unique_ptr<Private> d;
};
