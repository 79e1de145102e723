#include "platform/effects/CrossFade.h"

#include "platform/effects/Canvas.h"
#include "platform/effects/CoverageBlend.h"

namespace Effects {

void CrossFade::draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
                     double progress, Velmor::AV::Frame& target) const {
    requireComposing("A fade", {&outgoing, &incoming, &target});
    const double share = std::clamp(progress, 0.0, 1.0);
    blendBy(outgoing, incoming, target, [share](const Footprint&) { return share; });
}

} // namespace Effects
