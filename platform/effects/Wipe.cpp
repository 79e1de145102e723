#include "platform/effects/Wipe.h"

#include "platform/effects/Canvas.h"
#include "platform/effects/CoverageBlend.h"

namespace Effects {

Wipe::Wipe(Direction direction)
    : direction(direction) {}

void Wipe::draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
                double progress, Velmor::AV::Frame& target) const {
    requireComposing("A wipe", {&outgoing, &incoming, &target});
    const double share = std::clamp(progress, 0.0, 1.0);
    const double width = target.width();
    const double height = target.height();
    const Direction towards = direction;
    blendBy(outgoing, incoming, target, [=](const Footprint& sample) {
        // The incoming picture's share of the sample: how much of it lies past the edge.
        switch (towards) {
        case Direction::Left:
            return (sample.x + sample.halfWidth - width * (1 - share)) / (2 * sample.halfWidth);
        case Direction::Right:
            return (width * share - (sample.x - sample.halfWidth)) / (2 * sample.halfWidth);
        case Direction::Up:
            return (sample.y + sample.halfHeight - height * (1 - share)) / (2 * sample.halfHeight);
        case Direction::Down:
            return (height * share - (sample.y - sample.halfHeight)) / (2 * sample.halfHeight);
        }
        return share;
    });
}

} // namespace Effects
