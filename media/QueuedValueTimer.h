#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <rxcpp/rx.hpp>

namespace EditorService {

// Times the values that work waiting for a shared place emits, so that a time limit on silence
// sees it alive: one every `gap`, the first one gap after start, on a coordination whose actions
// run later, never inside the call that schedules them.
class QueuedValueTimer {
public:
    // The gap of every waiting service, that of a quiet export's progress.
    static const std::chrono::milliseconds gap;

    explicit QueuedValueTimer(rxcpp::observe_on_one_worker coordination);
    QueuedValueTimer(const QueuedValueTimer&) = delete;
    QueuedValueTimer& operator=(const QueuedValueTimer&) = delete;
    // Stops, as stop does.
    ~QueuedValueTimer();

    // Calls `emit` on the coordination's worker every gap until it returns false or stop is
    // called. Once only: later calls do nothing.
    void start(std::function<bool()> emit);
    // No emit is called after this one; from any thread, any number of times.
    void stop();

private:
    rxcpp::observe_on_one_worker coordination;
    rxcpp::composite_subscription ticks;
    std::once_flag started;
};

} // namespace EditorService
