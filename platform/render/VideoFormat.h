#pragma once

#include "platform/av/Rational.h"

namespace Velmor::Render {

// What a video source hands out: pictures of one size and pixel format, timed in one time base.
struct VideoFormat {
    int width = 0;
    int height = 0;
    // An AVPixelFormat (AV::pixelFormat("yuv420p")).
    int pixelFormat = -1;
    // The nominal rate; 0/1 when unknown (a variable rate keeps its timestamps).
    AV::Rational frameRate{0, 1};
    // The unit of the frames' timestamps.
    AV::Rational timeBase{0, 1};
    // How the pictures are to be shown: turned by degrees counterclockwise, and the shape of a
    // pixel (AV::StreamInfo's fields); UprightVideo applies both.
    int rotation = 0;
    // Mirrored as AV::StreamInfo::mirrored says.
    bool mirrored = false;
    AV::Rational sampleAspectRatio{1, 1};
};

} // namespace Velmor::Render
