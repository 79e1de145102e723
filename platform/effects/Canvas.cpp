#include "platform/effects/Canvas.h"

#include "platform/av/Picture.h"
#include "platform/av/Plane.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Effects {
namespace {

std::string describe(const Velmor::AV::Frame& picture) {
    return std::to_string(picture.width()) + "x" + std::to_string(picture.height()) + " "
           + Velmor::AV::pixelFormatName(picture.format());
}

} // namespace

int composingFormat() {
    static const int format = Velmor::AV::pixelFormat("yuv420p");
    return format;
}

int overlayFormat() {
    static const int format = Velmor::AV::pixelFormat("yuva420p");
    return format;
}

Velmor::AV::Frame canvas(Velmor::AV::Size size, YuvColour colour) {
    Velmor::AV::Frame picture =
        Velmor::AV::Frame::picture(size.width, size.height, composingFormat());
    fill(picture, colour);
    return picture;
}

void fill(Velmor::AV::Frame& picture, YuvColour colour) {
    const std::uint8_t values[3] = {colour.y, colour.u, colour.v};
    for (int index = 0; index < 3; ++index) {
        const Velmor::AV::Plane plane = Velmor::AV::planeOf(picture, index);
        for (int y = 0; y < plane.height; ++y)
            std::fill_n(plane.row(y), plane.width, values[index]);
    }
}

void fillRect(Velmor::AV::Frame& picture, const Velmor::AV::Rect& rect, YuvColour colour) {
    if (rect.isEmpty())
        return;
    const std::uint8_t values[3] = {colour.y, colour.u, colour.v};
    for (int index = 0; index < 3; ++index) {
        const Velmor::AV::Plane plane = Velmor::AV::planeOf(picture, index);
        const int shift = index == 0 ? 0 : 1;
        const int left = std::max(0, rect.x >> shift);
        const int top = std::max(0, rect.y >> shift);
        const int right = std::min(plane.width, (rect.x + rect.width + shift) >> shift);
        const int bottom = std::min(plane.height, (rect.y + rect.height + shift) >> shift);
        for (int y = top; y < bottom; ++y)
            std::fill(plane.row(y) + left, plane.row(y) + std::max(left, right), values[index]);
    }
}

void requireComposing(const char* what, std::initializer_list<const Velmor::AV::Frame*> pictures) {
    const Velmor::AV::Frame& first = **pictures.begin();
    for (const Velmor::AV::Frame* picture : pictures) {
        if (picture->format() == composingFormat() && picture->width() == first.width()
            && picture->height() == first.height())
            continue;
        std::string found;
        for (const Velmor::AV::Frame* each : pictures)
            found += (found.empty() ? "" : ", ") + describe(*each);
        throw std::invalid_argument(std::string(what) + " needs yuv420p pictures of one size, not "
                                    + found);
    }
}

} // namespace Effects
