#include "platform/effects/FadeThrough.h"

#include "platform/effects/Canvas.h"
#include "platform/effects/CoverageBlend.h"

namespace Effects {

FadeThrough::FadeThrough(Colour through)
    : through(toYuv(through)) {}

void FadeThrough::draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
                       double progress, Velmor::AV::Frame& target) const {
    requireComposing("A fade", {&outgoing, &incoming, &target});
    const double share = std::clamp(progress, 0.0, 1.0);
    const Velmor::AV::Frame middle =
        canvas(Velmor::AV::Size{target.width(), target.height()}, through);
    if (share < 0.5)
        blendBy(outgoing, middle, target, [share](const Footprint&) { return 2 * share; });
    else
        blendBy(middle, incoming, target, [share](const Footprint&) { return 2 * share - 1; });
}

} // namespace Effects
