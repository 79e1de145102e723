#pragma once

#include "platform/effects/Transition.h"

namespace Effects {

// "circle-open": the incoming picture shows inside a circle that grows from the centre until
// it covers the corners. "circle-close": the outgoing picture shows inside a circle that
// shrinks to the centre. The rim is smoothed over one pixel.
class Circle : public Transition {
public:
    enum class Motion { Open, Close };

    explicit Circle(Motion motion);

    void draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming, double progress,
              Velmor::AV::Frame& target) const override;

private:
    Motion motion;
};

} // namespace Effects
