#include "platform/mix/HopMeter.h"

#include "platform/av/AudioBlock.h"
#include "platform/av/AudioFilterChain.h"

#include <algorithm>
#include <cmath>

namespace Mixing {
namespace {

constexpr int oversampling = 4;

} // namespace

class HopMeter::Private {
public:
    Private(int sampleRate, int channels, int hop)
        : hop(hop)
        , channels(channels)
        , chain({Velmor::AV::planarFloat(), sampleRate, channels},
                {{"aresample", {{"osr", std::to_string(sampleRate * oversampling)}}}},
                {Velmor::AV::planarFloat(), sampleRate * oversampling, channels}) {}

    void drain() {
        Velmor::AV::Frame oversampled;
        while (chain.pull(oversampled))
            measure(oversampled);
    }

    // The resampler gives its samples from the mix's start on, one after another: they are
    // placed by counting, as the filter's timestamps do not keep one unit.
    void measure(const Velmor::AV::Frame& oversampled) {
        for (int channel = 0; channel < channels; ++channel) {
            const float* samples = Velmor::AV::channelOf(oversampled, channel);
            for (int index = 0; index < oversampled.samples(); ++index) {
                const std::size_t at =
                    static_cast<std::size_t>((counted + index) / oversampling / hop);
                if (at >= levels.peaks.size()) {
                    levels.peaks.resize(at + 1, 0.0f);
                    energies.resize(at + 1, 0.0);
                    counts.resize(at + 1, 0);
                }
                levels.peaks[at] = std::max(levels.peaks[at], std::abs(samples[index]));
                energies[at] += static_cast<double>(samples[index]) * samples[index];
                ++counts[at];
            }
        }
        counted += oversampled.samples();
    }

    const int hop;
    const int channels;
    Velmor::AV::AudioFilterChain chain;
    HopLevels levels;
    std::vector<double> energies;
    std::vector<std::int64_t> counts;
    std::int64_t counted = 0;
};

HopMeter::HopMeter(int sampleRate, int channels, int hop)
    : d(std::make_unique<Private>(sampleRate, channels, hop)) {}

HopMeter::~HopMeter() = default;

void HopMeter::add(const Velmor::AV::Frame& block) {
    d->chain.push(block);
    d->drain();
}

HopLevels HopMeter::finish() {
    d->chain.close();
    d->drain();
    for (std::size_t index = 0; index < d->energies.size(); ++index)
        d->levels.powers.push_back(static_cast<float>(d->energies[index] / d->counts[index]));
    return d->levels;
}

} // namespace Mixing
