#pragma once

// The reactive core: observables, subscribers, subjects, schedulers and the operators that
// this code base uses, with the names and shapes of RxCpp 4.1.

#include "rx-coordination.hpp"
#include "rx-observable.hpp"
#include "rx-scheduler.hpp"
#include "rx-subscriber.hpp"
#include "rx-subscription.hpp"
#include "rx-util.hpp"
#include "schedulers/rx-currentthread.hpp"
#include "schedulers/rx-newthread.hpp"
#include "subjects/rx-subject.hpp"

#include "operators/rx-filter.hpp"
#include "operators/rx-finally.hpp"
#include "operators/rx-flat_map.hpp"
#include "operators/rx-map.hpp"
#include "operators/rx-observe_on.hpp"
#include "operators/rx-on_error_resume_next.hpp"
#include "operators/rx-timeout.hpp"

namespace rxcpp {
namespace rxu = util;
namespace rxsc = schedulers;
namespace rxsub = subjects;
} // namespace rxcpp
