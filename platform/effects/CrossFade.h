#pragma once

#include "platform/effects/Transition.h"

namespace Effects {

// "fade": every pixel moves evenly from the outgoing picture to the incoming one.
class CrossFade : public Transition {
public:
    void draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming, double progress,
              Velmor::AV::Frame& target) const override;
};

} // namespace Effects
