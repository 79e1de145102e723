#pragma once

#include "platform/av/Frame.h"

namespace Effects {

// Draws one picture of a change from the outgoing clip to the incoming one. Pictures are
// composing pictures (yuv420p) of one size; `progress` runs from 0 (all outgoing) to 1 (all
// incoming) and is clamped. A picture depends on its inputs and progress alone, so any frame of
// a transition can be drawn without the frames before it.
class Transition {
public:
    Transition() = default;
    Transition(const Transition&) = delete;
    Transition& operator=(const Transition&) = delete;
    virtual ~Transition();

    // Throws std::invalid_argument when the pictures are not composing pictures of one size.
    virtual void draw(const Velmor::AV::Frame& outgoing, const Velmor::AV::Frame& incoming,
                      double progress, Velmor::AV::Frame& target) const = 0;
};

} // namespace Effects
