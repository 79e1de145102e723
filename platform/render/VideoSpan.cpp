#include "platform/render/VideoSpan.h"

#include "platform/av/Rational.h"

namespace Velmor::Render {

VideoSpan::VideoSpan(std::int64_t begin, std::int64_t end, std::int64_t step)
    : begin(begin)
    , end(end)
    , step(step)
    , last(AV::noTimestamp)
    , firstInside(AV::noTimestamp) {}

VideoSpan::Place VideoSpan::place(std::int64_t& timestamp) {
    if (timestamp == AV::noTimestamp)
        timestamp = last == AV::noTimestamp ? begin : last + step;
    last = timestamp;
    if (timestamp < begin)
        return Place::Before;
    if (timestamp >= end)
        return Place::After;
    if (firstInside == AV::noTimestamp)
        firstInside = timestamp;
    timestamp -= firstInside;
    return Place::Inside;
}

std::int64_t VideoSpan::first() const {
    return firstInside;
}

} // namespace Velmor::Render
