#include "platform/mix/Ducker.h"

#include "platform/av/AudioBlock.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Mixing {
namespace {

// The level's window: long enough to span a low voice's period, short enough to catch the
// start of a word.
constexpr std::int64_t windowMs = 50;

double stepPerHop(double amountDb, std::int64_t ms, int hop, int sampleRate) {
    if (ms <= 0)
        return std::numeric_limits<double>::infinity();
    return std::abs(amountDb) * hop * 1000.0 / (static_cast<double>(ms) * sampleRate);
}

float linear(double decibels) {
    return static_cast<float>(std::pow(10.0, decibels / 20.0));
}

} // namespace

Ducker::Ducker(const Project::Duck& duck, int sampleRate, GainCurve& curve)
    : curve(curve)
    , thresholdDb(duck.thresholdDb)
    , amountDb(duck.amountDb)
    , attackStep(stepPerHop(duck.amountDb, duck.attackMs, curve.hop(), sampleRate))
    , releaseStep(stepPerHop(duck.amountDb, duck.releaseMs, curve.hop(), sampleRate)) {
    curve.append(1);
    // At least one hop, however short the window is at a low rate.
    windowHops = std::max<std::size_t>(1, windowMs * sampleRate / 1000 / curve.hop());
}

void Ducker::feed(const Velmor::AV::Frame& sideChain) {
    const int channels = Velmor::AV::shapeOf(sideChain).channels;
    int index = 0;
    while (index < sideChain.samples()) {
        const int part = static_cast<int>(
            std::min<std::int64_t>(sideChain.samples() - index, curve.hop() - counted));
        for (int channel = 0; channel < channels; ++channel) {
            const float* samples = Velmor::AV::channelOf(sideChain, channel) + index;
            for (int at = 0; at < part; ++at)
                power += static_cast<double>(samples[at]) * samples[at] / channels;
        }
        counted += part;
        index += part;
        if (counted == curve.hop())
            endHop();
    }
}

void Ducker::finish() {
    if (counted > 0)
        endHop();
}

void Ducker::endHop() {
    window.emplace_back(power, counted);
    if (window.size() > windowHops)
        window.pop_front();
    power = 0;
    counted = 0;
    double sum = 0;
    std::int64_t samples = 0;
    for (const auto& [hopPower, hopSamples] : window) {
        sum += hopPower;
        samples += hopSamples;
    }
    const double levelDb = 10 * std::log10(std::max(sum / samples, 1e-20));
    const double target = levelDb > thresholdDb ? amountDb : 0.0;
    if (target < gainDb)
        gainDb = std::max(target, gainDb - attackStep);
    else
        gainDb = std::min(target, gainDb + releaseStep);
    curve.append(linear(gainDb));
}

} // namespace Mixing
