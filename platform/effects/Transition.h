#pragma once

#include "platform/av/Frame.h"

namespace Effects {

// Draws one picture of a change from the outgoing clip to the incoming one. Pictures are
// composing pictures (yuv420p) of one size; `progress` runs from 0 (all outgoing) to 1 (all
// incoming) and is clamped. A picture depends on its inputs and progress alone, so any frame of
// a transition can be drawn without the frames before it. Drawn by hand rather than by
// libavfilter's xfade, which takes its progress from the timestamps it has seen since its first
// frame: it can not draw one frame of a transition alone, and a frame drawn alone must equal the
// same frame of a whole run. The work per pixel is a weighted sum or a copy.
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
