#include "platform/av/Rational.h"

extern "C" {
#include <libavutil/avutil.h>
#include <libavutil/mathematics.h>
}

namespace Velmor::AV {

const std::int64_t noTimestamp = AV_NOPTS_VALUE;

std::int64_t rescale(std::int64_t timestamp, Rational from, Rational to) {
    if (timestamp == AV_NOPTS_VALUE)
        return timestamp;
    return av_rescale_q(timestamp, AVRational{from.num, from.den}, AVRational{to.num, to.den});
}

} // namespace Velmor::AV
