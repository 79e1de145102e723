#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"
#include "platform/effects/Easing.h"
#include "platform/effects/NormalisedRect.h"

#include <memory>

namespace Effects {

// A movement over a picture: the rectangle shown moves from `from` to `to` along the easing.
struct PanZoomPath {
    NormalisedRect from;
    NormalisedRect to;
    Easing easing = Easing::Linear;

    // The rectangle shown at `progress` (0 at the start of the clip, 1 at its end).
    NormalisedRect at(double progress) const {
        return interpolate(from, to, ease(easing, progress));
    }
};

// The part of `rect` that fills a target of the given size: the rectangle, in the source's
// normalised coordinates, narrowed about its centre on one axis to the target's shape, as a
// fill that crops.
NormalisedRect filledRegion(const NormalisedRect& rect, Velmor::AV::Size source,
                            Velmor::AV::Size target);

// Paints what a normalised rectangle of a picture shows into the whole of a composing picture,
// filled (filledRegion), placed to a fraction of a pixel. Written by hand: libavfilter's
// zoompan crops at whole pixels, so a slow pan or zoom moves in visible steps (the jitter
// people see in its Ken Burns moves). Here each sample of the target is weighed from the
// source's samples about its exact place (a tent filter, widened when the picture shrinks so
// that nothing aliases), so the picture glides by any fraction of a pixel. One thread at a time.
class PanZoomPainter {
public:
    PanZoomPainter();
    ~PanZoomPainter();
    PanZoomPainter(PanZoomPainter&&) noexcept;
    PanZoomPainter& operator=(PanZoomPainter&&) noexcept;

    // The source may be of any format libswscale reads; other than yuv420p it is converted
    // first, at its own size. Throws std::invalid_argument when the target is not a composing
    // picture or the rectangle is empty.
    void paint(const Velmor::AV::Frame& source, const NormalisedRect& rect,
               Velmor::AV::Frame& target);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Effects
