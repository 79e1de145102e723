#pragma once

#include "platform/av/Frame.h"

namespace Effects {

// A picture to lay over a composed one (yuva420p, alpha not premultiplied) and where its top
// left corner goes, at even pixels so that its chroma meets the target's. An empty one (no
// pixels) shows nothing.
struct PlacedPicture {
    Velmor::AV::Frame picture;
    int x = 0;
    int y = 0;

    bool isEmpty() const { return picture.width() <= 0 || picture.height() <= 0; }
};

// Lays the picture over a composing picture, its alpha times `opacity` (0 to 1, clamped); what
// lies outside the target is cut. By hand rather than through libavfilter's overlay, which pairs
// the frames of two streams by their timestamps: here one picture goes over one frame, with
// the opacity of that frame's place in its fades. Throws std::invalid_argument when the target is
// not a composing picture, the picture not yuva420p, or its place odd.
void blendOver(Velmor::AV::Frame& target, const PlacedPicture& placed, double opacity);

} // namespace Effects
