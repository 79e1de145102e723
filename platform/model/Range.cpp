#include "platform/model/Range.h"

namespace Types {

Range::Range()
    : startTime(0)
    , endTime(0)
    , valid(false) {}

Range::Range(MTime start, MTime end)
    : startTime(start)
    , endTime(end)
    , valid(true) {}

bool Range::operator==(const Range& other) const {
    return valid == other.valid && startTime == other.startTime && endTime == other.endTime;
}

bool Range::isValid() const {
    return valid;
}

MTime Range::start() const {
    return startTime;
}

MTime Range::end() const {
    return endTime;
}

} // namespace Types
