#pragma once

#include "platform/av/Encoder.h"

#include <cstdint>
#include <string>

namespace Velmor::Render {

// How a writer encodes a video stream; the size and pixel format are the first picture's.
struct VideoEncoding {
    // The library's encoder: "libx264", "libx265".
    std::string encoder;
    AV::RateControl rateControl = AV::RateControl::Auto;
    std::int64_t bitRate = 0;
    // Headers from the settings alone, so that parts encoded apart join by copying.
    bool stitchable = false;
};

} // namespace Velmor::Render
