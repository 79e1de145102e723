#pragma once

#include "platform/effects/Transition.h"

namespace Effects {

// "dissolve": the incoming picture replaces the outgoing one in small blocks, in an order that
// looks random but is the same every time, so a frame drawn alone equals the same frame drawn
// in a run. A block is the pixels one chroma sample covers (2x2), so colour never parts from
// its brightness.
class Dissolve : public Transition {
public:
    void draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming, double progress,
              Velmor::AV::Frame& target) const override;

    // The progress at which the block turns to the incoming picture, in [0, 1).
    static double turningPoint(int blockX, int blockY);
};

} // namespace Effects
