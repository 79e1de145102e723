#include "media/QueuedValueTimer.h"

#include "media/ProgressPacer.h"

namespace EditorService {
namespace {

void scheduleNext(const rxcpp::schedulers::worker& ticker, std::function<bool()> emit) {
    ticker.schedule(ticker.now() + QueuedValueTimer::gap,
                    [ticker, emit](const rxcpp::schedulers::schedulable&) {
                        if (emit())
                            scheduleNext(ticker, emit);
                    });
}

} // namespace

const std::chrono::milliseconds QueuedValueTimer::gap = ProgressPacer::maximumGap;

QueuedValueTimer::QueuedValueTimer(rxcpp::observe_on_one_worker coordination)
    : coordination(std::move(coordination)) {}

QueuedValueTimer::~QueuedValueTimer() {
    stop();
}

void QueuedValueTimer::start(std::function<bool()> emit) {
    std::call_once(started, [&] {
        scheduleNext(coordination.create_coordinator(ticks).get_worker(), std::move(emit));
    });
}

void QueuedValueTimer::stop() {
    ticks.unsubscribe();
}

} // namespace EditorService
