#include "platform/effects/TitleRenderer.h"

#include "platform/av/FilterChain.h"
#include "platform/av/Picture.h"
#include "platform/av/Plane.h"
#include "platform/av/Scaler.h"
#include "platform/effects/Canvas.h"

#include <algorithm>

namespace Effects {
namespace {

using Velmor::AV::FilterStep;
using Velmor::AV::Frame;
using Velmor::AV::Size;

int rgbFormat() {
    static const int format = Velmor::AV::pixelFormat("rgb24");
    return format;
}

int rgbaFormat() {
    static const int format = Velmor::AV::pixelFormat("rgba");
    return format;
}

int column(Position position) {
    return static_cast<int>(position) % 3;
}

int row(Position position) {
    return static_cast<int>(position) / 3;
}

// drawtext's expressions for the top left corner of line `index` of `count`: w, h, tw and lh
// are the frame's size, the line's width and the font's line height.
std::pair<std::string, std::string> corner(Position position, int margin, int index, int count) {
    const std::string m = std::to_string(margin);
    const std::string x[] = {m, "(w-tw)/2", "w-" + m + "-tw"};
    const std::string i = std::to_string(index);
    const std::string n = std::to_string(count);
    const std::string y[] = {m + "+" + i + "*lh", "(h-" + n + "*lh)/2+" + i + "*lh",
                             "h-" + m + "-(" + n + "-" + i + ")*lh"};
    return {x[column(position)], y[row(position)]};
}

std::vector<FilterStep> drawingFilters(const std::vector<std::string>& lines,
                                       const TitleStyle& style, Size frame) {
    const int size = style.size > 0 ? style.size : std::max(1, frame.height / 12);
    const int margin = frame.height / 20;
    std::vector<FilterStep> filters;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        if (lines[index].empty())
            continue;
        const auto [x, y] =
            corner(style.position, margin, static_cast<int>(index), static_cast<int>(lines.size()));
        FilterStep step{"drawtext",
                        {{"text", lines[index]},
                         {"expansion", "none"},
                         {"font", style.font},
                         {"fontsize", std::to_string(size)},
                         {"fontcolor", colourText(style.colour)},
                         {"x", x},
                         {"y", y}}};
        if (style.background) {
            step.options.push_back({"box", "1"});
            step.options.push_back({"boxcolor", colourText(*style.background)});
            step.options.push_back({"boxborderw", std::to_string(std::max(1, size / 5))});
        }
        filters.push_back(std::move(step));
    }
    return filters;
}

Frame filled(Size size, std::uint8_t value) {
    Frame picture = Frame::picture(size.width, size.height, rgbFormat());
    const Velmor::AV::Plane plane = Velmor::AV::planeOf(picture, 0);
    for (int y = 0; y < plane.height; ++y)
        std::fill_n(plane.row(y), plane.width * 3, value);
    return picture;
}

// Over black a pixel is colour * coverage, over white that plus 255 * (1 - coverage): their
// difference gives the coverage, and black's pixel divided by it the colour. Pixels of no
// coverage take `clear`, the colour around them, so that the chroma of the edges, which
// libswscale takes from several pixels, does not fade towards black.
Frame unblend(const Frame& overBlack, const Frame& overWhite, Colour clear) {
    Frame rgba = Frame::picture(overBlack.width(), overBlack.height(), rgbaFormat());
    const Velmor::AV::ConstPlane black = Velmor::AV::planeOf(overBlack, 0);
    const Velmor::AV::ConstPlane white = Velmor::AV::planeOf(overWhite, 0);
    const Velmor::AV::Plane out = Velmor::AV::planeOf(rgba, 0);
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < out.width; ++x) {
            const std::uint8_t* b = black.row(y) + 3 * x;
            const std::uint8_t* w = white.row(y) + 3 * x;
            std::uint8_t* o = out.row(y) + 4 * x;
            const int alpha =
                std::clamp(255 - ((w[0] - b[0]) + (w[1] - b[1]) + (w[2] - b[2])) / 3, 0, 255);
            const std::uint8_t clearChannels[3] = {clear.red, clear.green, clear.blue};
            for (int channel = 0; channel < 3; ++channel)
                o[channel] = alpha ? static_cast<std::uint8_t>(
                                 std::min(255, (b[channel] * 255 + alpha / 2) / alpha))
                                   : clearChannels[channel];
            o[3] = static_cast<std::uint8_t>(alpha);
        }
    }
    return rgba;
}

// The smallest rectangle holding every pixel with some alpha, its corner on even pixels.
Velmor::AV::Rect shownPart(const Frame& rgba) {
    const Velmor::AV::ConstPlane plane = Velmor::AV::planeOf(rgba, 0);
    int left = plane.width, top = plane.height, right = -1, bottom = -1;
    for (int y = 0; y < plane.height; ++y) {
        for (int x = 0; x < plane.width; ++x) {
            if (plane.row(y)[4 * x + 3] == 0)
                continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (right < 0)
        return {};
    left -= left % 2;
    top -= top % 2;
    return {left, top, right - left + 1, bottom - top + 1};
}

} // namespace

std::vector<std::string> titleLines(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char character : text) {
        if (character == '\n')
            lines.emplace_back();
        else
            lines.back() += character;
    }
    return lines;
}

PlacedPicture renderTitle(const std::string& text, const TitleStyle& style, Size frame) {
    const std::vector<FilterStep> filters = drawingFilters(titleLines(text), style, frame);
    if (filters.empty())
        return {};
    Velmor::AV::FilterChain chain(frame, rgbFormat(), filters, rgbFormat());
    const Frame overBlack = chain.run(filled(frame, 0));
    const Frame overWhite = chain.run(filled(frame, 255));
    const Frame rgba = unblend(overBlack, overWhite, style.background.value_or(style.colour));
    const Velmor::AV::Rect shown = shownPart(rgba);
    if (shown.isEmpty())
        return {};
    PlacedPicture placed{Frame::picture(shown.width, shown.height, overlayFormat()), shown.x,
                         shown.y};
    Velmor::AV::Scaler scaler(1);
    scaler.scale(rgba, shown, placed.picture, Velmor::AV::Rect{0, 0, shown.width, shown.height});
    return placed;
}

} // namespace Effects
