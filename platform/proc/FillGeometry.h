#pragma once

#include "platform/av/Geometry.h"
#include "platform/proc/SettingsResizer.h"

#include <array>

namespace Velmor::Proc {

// Where a resize takes its pixels from and where it paints them; the target outside `target`
// is black.
struct FillGeometry {
    AV::Rect source; // the part of the source that is shown (all of it unless cropped)
    AV::Rect target; // where that part is painted, scaled to this size

    bool operator==(const FillGeometry& other) const {
        return source == other.source && target == other.target;
    }
};

// The geometry of `mode` for a source and a target size. Centring puts the odd pixel of an odd
// difference after the picture (on the right, at the bottom). Scaled lengths round half up;
// every offset rounds down to a multiple of `chromaBlock` (the subsampling, 2x2 for 4:2:0), as
// do painted lengths that come from scaling, so chroma stays aligned with luma: in 4:2:0 a
// picture may thus sit one pixel left of or above the exact centre. Center never scales, so its
// lengths stay exact. Throws std::invalid_argument "Can not resize to WxH: the width and the
// height must be positive" (or "Can not resize a picture of WxH: ...") and std::out_of_range for
// a number outside the six modes.
FillGeometry fillGeometry(AV::Size source, AV::Size target, SettingsResizer::CustomModes mode,
                          AV::Size chromaBlock = {1, 1});

// The bars around `painted` in a picture of `target` size: above, below, left, right, in this
// order; a bar of no pixels is an empty rectangle.
std::array<AV::Rect, 4> barsAround(const AV::Rect& painted, AV::Size target);

} // namespace Velmor::Proc
