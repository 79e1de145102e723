#pragma once

#include <cstdint>

namespace Media {

// The video track of a project: the frame that everything is rendered into.
struct Video {
    std::int32_t frameWidth = 0;
    std::int32_t frameHeight = 0;
};

} // namespace Media
