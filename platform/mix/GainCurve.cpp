#include "platform/mix/GainCurve.h"

#include "platform/av/AudioBlock.h"

#include <stdexcept>
#include <string>

namespace Mixing {

GainCurve::GainCurve(int hop)
    : step(hop) {
    if (hop <= 0)
        throw std::invalid_argument("A gain curve's hop must be positive, not "
                                    + std::to_string(hop));
}

void GainCurve::append(float gain) {
    values.push_back(gain);
}

float GainCurve::gainAt(std::int64_t sample) const {
    if (values.empty())
        return 1;
    if (sample <= 0)
        return values.front();
    const std::int64_t index = sample / step;
    if (index + 1 >= static_cast<std::int64_t>(values.size()))
        return values.back();
    const float through = static_cast<float>(sample % step) / static_cast<float>(step);
    return values[index] + (values[index + 1] - values[index]) * through;
}

void GainCurve::apply(Velmor::AV::Frame& block, std::int64_t at) const {
    if (values.empty())
        return;
    std::vector<float*> channels;
    for (int channel = 0; channel < Velmor::AV::shapeOf(block).channels; ++channel)
        channels.push_back(Velmor::AV::channelOf(block, channel));
    const int samples = block.samples();
    for (int index = 0; index < samples; ++index) {
        const float gain = gainAt(at + index);
        for (float* channel : channels)
            channel[index] *= gain;
    }
}

} // namespace Mixing
