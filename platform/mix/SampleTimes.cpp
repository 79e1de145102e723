#include "platform/mix/SampleTimes.h"

#include <stdexcept>
#include <string>

namespace Mixing {

SampleTimes::SampleTimes(int sampleRate)
    : sampleRate(sampleRate) {
    if (sampleRate <= 0)
        throw std::invalid_argument("A sample rate must be positive, not "
                                    + std::to_string(sampleRate));
}

std::int64_t SampleTimes::sampleAt(std::int64_t milliseconds) const {
    // ceil(ms * rate / 1000), for times on either side of 0.
    const std::int64_t numerator = milliseconds * sampleRate;
    const std::int64_t quotient = numerator / 1000;
    return quotient + (numerator % 1000 > 0 ? 1 : 0);
}

} // namespace Mixing
