#pragma once

#include "platform/mediatypes/Rational.h"

#include <cstdint>

namespace Velmor::AV {

// A timestamp from one time base to another, rounded to the nearest; an unknown timestamp
// (noTimestamp) stays unknown.
std::int64_t rescale(std::int64_t timestamp, Rational from, Rational to);

// The value of an unknown timestamp (AV_NOPTS_VALUE).
extern const std::int64_t noTimestamp;

} // namespace Velmor::AV
