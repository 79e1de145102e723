#include "platform/project/FrameTimes.h"

#include <stdexcept>

namespace Project {

FrameTimes::FrameTimes(Velmor::AV::Rational rate)
    : frameRate(rate) {
    if (rate.num <= 0 || rate.den <= 0)
        throw std::invalid_argument("A frame rate must be positive, not " + std::to_string(rate.num)
                                    + "/" + std::to_string(rate.den));
}

std::int64_t FrameTimes::frameAt(std::int64_t milliseconds) const {
    // ceil(ms * num / (1000 * den)), for times on either side of 0.
    const std::int64_t numerator = milliseconds * frameRate.num;
    const std::int64_t denominator = std::int64_t(1000) * frameRate.den;
    const std::int64_t quotient = numerator / denominator;
    return quotient + (numerator % denominator > 0 ? 1 : 0);
}

double FrameTimes::startOf(std::int64_t frame) const {
    return static_cast<double>(frame) * 1000.0 * frameRate.den / frameRate.num;
}

double FrameTimes::progress(std::int64_t frame, std::int64_t startMs, std::int64_t lengthMs) const {
    if (lengthMs <= 0)
        return 1;
    // In units of 1 / (1000 * num) s, exactly, before the one division.
    const double offset = static_cast<double>(frame) * 1000.0 * frameRate.den
                          - static_cast<double>(startMs) * frameRate.num;
    return offset / (static_cast<double>(lengthMs) * frameRate.num);
}

} // namespace Project
