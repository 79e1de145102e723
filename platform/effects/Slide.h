#pragma once

#include "platform/effects/Transition.h"

namespace Effects {

// "slide-left", "slide-right", "slide-up", "slide-down": the incoming picture pushes the
// outgoing one out of the frame in that direction (slide-left enters from the right). Both
// move by whole samples of each plane.
class Slide : public Transition {
public:
    enum class Direction { Left, Right, Up, Down };

    explicit Slide(Direction direction);

    void draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming, double progress,
              Velmor::AV::Frame& target) const override;

private:
    Direction direction;
};

} // namespace Effects
