#include "platform/effects/Slide.h"

#include "platform/av/Plane.h"
#include "platform/effects/Canvas.h"

#include <algorithm>
#include <cmath>

namespace Effects {
namespace {

using Velmor::AV::ConstPlane;
using Velmor::AV::Plane;

// Row y of the target, shifted left by `shift` samples: the outgoing row's tail, then the
// incoming row's head.
void pushRowLeft(const ConstPlane& from, const ConstPlane& to, const Plane& out, int y, int shift) {
    const int width = out.width;
    std::copy_n(from.row(y) + shift, width - shift, out.row(y));
    std::copy_n(to.row(y), shift, out.row(y) + width - shift);
}

void pushRowRight(const ConstPlane& from, const ConstPlane& to, const Plane& out, int y,
                  int shift) {
    const int width = out.width;
    std::copy_n(to.row(y) + width - shift, shift, out.row(y));
    std::copy_n(from.row(y), width - shift, out.row(y) + shift);
}

} // namespace

Slide::Slide(Direction direction)
    : direction(direction) {}

void Slide::draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
                 double progress, Velmor::AV::Frame& target) const {
    requireComposing("A slide", {&outgoing, &incoming, &target});
    const double share = std::clamp(progress, 0.0, 1.0);
    for (int index = 0; index < 3; ++index) {
        const ConstPlane from = Velmor::AV::planeOf(outgoing, index);
        const ConstPlane to = Velmor::AV::planeOf(incoming, index);
        const Plane out = Velmor::AV::planeOf(target, index);
        const int across = static_cast<int>(std::lround(out.width * share));
        const int down = static_cast<int>(std::lround(out.height * share));
        for (int y = 0; y < out.height; ++y) {
            switch (direction) {
            case Direction::Left:
                pushRowLeft(from, to, out, y, across);
                break;
            case Direction::Right:
                pushRowRight(from, to, out, y, across);
                break;
            case Direction::Up: {
                const bool isIncoming = y + down >= out.height;
                const ConstPlane& source = isIncoming ? to : from;
                const int sourceY = isIncoming ? y + down - out.height : y + down;
                std::copy_n(source.row(sourceY), out.width, out.row(y));
                break;
            }
            case Direction::Down: {
                const bool isIncoming = y < down;
                const ConstPlane& source = isIncoming ? to : from;
                const int sourceY = isIncoming ? y - down + out.height : y - down;
                std::copy_n(source.row(sourceY), out.width, out.row(y));
                break;
            }
            }
        }
    }
}

} // namespace Effects
