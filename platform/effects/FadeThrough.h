#pragma once

#include "platform/effects/Colour.h"
#include "platform/effects/Transition.h"

namespace Effects {

// "fade-black", "fade-white": the outgoing picture fades to a colour in the first half, the
// incoming one out of it in the second.
class FadeThrough : public Transition {
public:
    explicit FadeThrough(Colour through);

    void draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming, double progress,
              Velmor::AV::Frame& target) const override;

private:
    YuvColour through;
};

} // namespace Effects
