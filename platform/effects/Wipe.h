#pragma once

#include "platform/effects/Transition.h"

namespace Effects {

// "wipe-left", "wipe-right", "wipe-up", "wipe-down": a straight edge crosses the picture in
// that direction, the incoming picture behind it (wipe-left uncovers it from the right). The
// edge is placed to a fraction of a pixel, the pixel it cuts mixed by the share on each side,
// so it glides rather than steps.
class Wipe : public Transition {
public:
    enum class Direction { Left, Right, Up, Down };

    explicit Wipe(Direction direction);

    void draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming, double progress,
              Velmor::AV::Frame& target) const override;

private:
    Direction direction;
};

} // namespace Effects
