#include "platform/effects/Colour.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Effects {
namespace {

int hexDigit(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

std::optional<std::uint8_t> hexByte(const std::string& text, std::size_t at) {
    const int high = hexDigit(text[at]);
    const int low = hexDigit(text[at + 1]);
    if (high < 0 || low < 0)
        return std::nullopt;
    return static_cast<std::uint8_t>(high * 16 + low);
}

std::uint8_t clampedByte(double value) {
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

} // namespace

std::optional<Colour> parseColour(const std::string& text) {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#')
        return std::nullopt;
    std::uint8_t bytes[4] = {0, 0, 0, 255};
    for (std::size_t index = 0; 1 + 2 * index < text.size(); ++index) {
        const auto byte = hexByte(text, 1 + 2 * index);
        if (!byte)
            return std::nullopt;
        bytes[index] = *byte;
    }
    return Colour{bytes[0], bytes[1], bytes[2], bytes[3]};
}

std::string colourText(Colour colour) {
    char text[10] = {};
    if (colour.alpha == 255)
        std::snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    else
        std::snprintf(text, sizeof text, "#%02x%02x%02x%02x", colour.red, colour.green, colour.blue,
                      colour.alpha);
    return text;
}

YuvColour toYuv(Colour colour) {
    const double r = colour.red / 255.0;
    const double g = colour.green / 255.0;
    const double b = colour.blue / 255.0;
    const double luma = 0.299 * r + 0.587 * g + 0.114 * b;
    return {clampedByte(16 + 219 * luma), clampedByte(128 + 224 * (b - luma) / 1.772),
            clampedByte(128 + 224 * (r - luma) / 1.402)};
}

} // namespace Effects
