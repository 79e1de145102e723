#pragma once

#include "platform/model/MTime.h"

namespace Types {

// A time range from start to end. The bounds are taken as given, in any order. A default
// range stands for no range at all and equals no range made from two times.
class Range {
public:
    Range();
    Range(MTime start, MTime end);

    bool operator==(const Range& other) const;
    bool operator!=(const Range& other) const { return !(*this == other); }

    // True for a range made from two times.
    bool isValid() const;
    MTime start() const;
    MTime end() const;

private:
    MTime startTime;
    MTime endTime;
    bool valid;
};

} // namespace Types
