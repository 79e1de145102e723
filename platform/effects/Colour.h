#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Effects {

// A colour as projects write it, "#rrggbb" or "#rrggbbaa", alpha 255 when not given.
struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    std::uint8_t alpha = 255;

    bool operator==(const Colour& other) const {
        return red == other.red && green == other.green && blue == other.blue
               && alpha == other.alpha;
    }
    bool operator!=(const Colour& other) const { return !(*this == other); }
};

// The colour of "#rrggbb" or "#rrggbbaa", hex digits in either case; empty for any other text.
std::optional<Colour> parseColour(const std::string& text);
// "#rrggbb" for an opaque colour, else "#rrggbbaa", in lower case.
std::string colourText(Colour colour);

// A colour in limited-range BT.601 YUV, as libswscale converts RGB for yuv420p pictures.
struct YuvColour {
    std::uint8_t y = 16;
    std::uint8_t u = 128;
    std::uint8_t v = 128;
};

// The colour's YUV, its alpha ignored.
YuvColour toYuv(Colour colour);

} // namespace Effects
