#pragma once

#include "platform/av/Frame.h"

#include <cstdint>

namespace Velmor::AV {

// The bytes of one plane of a planar 8-bit picture (yuv420p, yuva420p, gray) or of the one
// plane of a packed one (rgb24, rgba), for code that paints pixels by hand without FFmpeg's
// headers. `width` and `height` are the plane's own, in samples: a chroma plane of a 4:2:0
// picture of 5x3 is 3x2. `bytesPerPixel` is 1 in planar formats, 3 in rgb24, 4 in rgba.
template <class Byte> struct PlaneOf {
    Byte* data = nullptr;
    int linesize = 0;
    int width = 0;
    int height = 0;
    int bytesPerPixel = 1;

    Byte* row(int y) const { return data + static_cast<std::ptrdiff_t>(y) * linesize; }
};
using Plane = PlaneOf<std::uint8_t>;
using ConstPlane = PlaneOf<const std::uint8_t>;

// The plane `index` of the picture. Throws std::out_of_range for a plane the format does not
// have and std::invalid_argument for a format whose samples are not whole bytes. Writing
// through a Plane changes the picture's buffers, which must then be its own (Frame::picture).
Plane planeOf(Frame& picture, int index);
ConstPlane planeOf(const Frame& picture, int index);
// How many planes the picture's format has: 3 for yuv420p, 4 for yuva420p, 1 for rgba.
int planeCount(const Frame& picture);

} // namespace Velmor::AV
