#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"
#include "platform/effects/NormalisedRect.h"
#include "platform/effects/PlacedPicture.h"

#include <memory>

namespace Effects {

// Where a picture of `picture` size goes when fitted into the normalised rectangle of a frame:
// as large as fits with its shape kept, centred in the rectangle, its corner on even pixels.
// At least 2x2 pixels.
Velmor::AV::Rect fittedPlace(Velmor::AV::Size picture, const NormalisedRect& rect,
                             Velmor::AV::Size frame);

// Fits pictures (an image's, a video's frames) into normalised rectangles of a frame, as
// overlays: scaled by libswscale to their place, alpha kept (opaque for formats without one).
// One thread at a time.
class OverlayPlacer {
public:
    OverlayPlacer();
    ~OverlayPlacer();
    OverlayPlacer(OverlayPlacer&&) noexcept;
    OverlayPlacer& operator=(OverlayPlacer&&) noexcept;

    PlacedPicture place(const Velmor::AV::Frame& picture, const NormalisedRect& rect,
                        Velmor::AV::Size frame);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Effects
