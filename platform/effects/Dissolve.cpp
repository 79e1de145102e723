#include "platform/effects/Dissolve.h"

#include "platform/effects/Canvas.h"
#include "platform/effects/CoverageBlend.h"

#include <cstdint>

namespace Effects {

double Dissolve::turningPoint(int blockX, int blockY) {
    // An integer hash (the finaliser of MurmurHash3) of the block's place: well spread, and
    // the same on every machine, unlike a library's random numbers.
    std::uint32_t h = static_cast<std::uint32_t>(blockX) * 0x9E3779B1u
                      ^ static_cast<std::uint32_t>(blockY) * 0x85EBCA77u;
    h ^= h >> 16;
    h *= 0x85EBCA6Bu;
    h ^= h >> 13;
    h *= 0xC2B2AE35u;
    h ^= h >> 16;
    return (h >> 8) / 16777216.0;
}

void Dissolve::draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
                    double progress, Velmor::AV::Frame& target) const {
    requireComposing("A dissolve", {&outgoing, &incoming, &target});
    blendBy(outgoing, incoming, target, [progress](const Footprint& sample) {
        const int blockX = static_cast<int>(sample.x) / 2;
        const int blockY = static_cast<int>(sample.y) / 2;
        return progress > turningPoint(blockX, blockY) ? 1.0 : 0.0;
    });
}

} // namespace Effects
