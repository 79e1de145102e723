#pragma once

#include "platform/av/Plane.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Effects {

// Where a sample of a plane lies, in pixels of the picture's full (luma) size: its centre, and
// half its width and height (a chroma sample of 4:2:0 covers 2x2 pixels).
struct Footprint {
    double x = 0;
    double y = 0;
    double halfWidth = 0.5;
    double halfHeight = 0.5;
};

inline std::uint8_t mixSamples(std::uint8_t from, std::uint8_t to, double share) {
    return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
}

// Writes each sample of `target` as the outgoing one mixed with the incoming one by `share`
// (0 to 1) of the sample's footprint; the three planes of pictures of one size alike.
template <class Share>
void blendBy(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
             Velmor::AV::Frame& target, Share share) {
    for (int index = 0; index < 3; ++index) {
        const Velmor::AV::ConstPlane from = Velmor::AV::planeOf(outgoing, index);
        const Velmor::AV::ConstPlane to = Velmor::AV::planeOf(incoming, index);
        const Velmor::AV::Plane out = Velmor::AV::planeOf(target, index);
        const double sampleWidth = static_cast<double>(target.width()) / out.width;
        const double sampleHeight = static_cast<double>(target.height()) / out.height;
        for (int y = 0; y < out.height; ++y) {
            const std::uint8_t* fromRow = from.row(y);
            const std::uint8_t* toRow = to.row(y);
            std::uint8_t* outRow = out.row(y);
            for (int x = 0; x < out.width; ++x) {
                const Footprint footprint{(x + 0.5) * sampleWidth, (y + 0.5) * sampleHeight,
                                          sampleWidth / 2, sampleHeight / 2};
                outRow[x] =
                    mixSamples(fromRow[x], toRow[x], std::clamp(share(footprint), 0.0, 1.0));
            }
        }
    }
}

} // namespace Effects
