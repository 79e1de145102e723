#include "platform/effects/Circle.h"

#include "platform/effects/Canvas.h"
#include "platform/effects/CoverageBlend.h"

#include <cmath>

namespace Effects {

Circle::Circle(Motion motion)
    : motion(motion) {}

void Circle::draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
                  double progress, Velmor::AV::Frame& target) const {
    requireComposing("A circle", {&outgoing, &incoming, &target});
    const double share = std::clamp(progress, 0.0, 1.0);
    const double centreX = target.width() / 2.0;
    const double centreY = target.height() / 2.0;
    const double reach = std::hypot(centreX, centreY);
    const bool opens = motion == Motion::Open;
    const double radius = reach * (opens ? share : 1 - share);
    blendBy(outgoing, incoming, target, [=](const Footprint& sample) {
        const double distance = std::hypot(sample.x - centreX, sample.y - centreY);
        const double inside =
            std::clamp((radius - distance) / (2 * sample.halfWidth) + 0.5, 0.0, 1.0);
        return opens ? inside : 1 - inside;
    });
}

} // namespace Effects
