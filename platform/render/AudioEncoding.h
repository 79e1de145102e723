#pragma once

#include <cstdint>
#include <string>

namespace Velmor::Render {

// How a writer encodes an audio stream; the rate and channels are its source's.
struct AudioEncoding {
    // The library's encoder: "aac".
    std::string encoder;
    std::int64_t bitRate = 0;
};

} // namespace Velmor::Render
