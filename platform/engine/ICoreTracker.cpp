#include "platform/engine/ICoreTracker.h"

namespace Velmor::Proc {

ICoreTracker::~ICoreTracker() = default;

void intrusive_ptr_add_ref(ICoreTracker* tracker) {
    tracker->references.fetch_add(1, std::memory_order_relaxed);
}

void intrusive_ptr_release(ICoreTracker* tracker) {
    if (tracker->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete tracker;
}

} // namespace Velmor::Proc
