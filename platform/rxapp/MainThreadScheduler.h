#pragma once

#include <rxcpp/rx.hpp>

namespace Velmor::rx {

// A scheduler whose workers run their actions on the thread of the Qt main event loop
// (QCoreApplication's thread), in time order and first in first out for equal times, always on
// a later turn of the loop than the call that scheduled them, even when that call is made on the
// main thread. All workers share one process-wide queue. An action that throws ends the process,
// as it would on a thread of its own. Needs a live QCoreApplication.
class MainThreadScheduler : public rxcpp::schedulers::scheduler_interface {
public:
    MainThreadScheduler();

    clock_type::time_point now() const override;
    rxcpp::schedulers::worker create_worker(rxcpp::composite_subscription cs) const override;
};

} // namespace Velmor::rx
