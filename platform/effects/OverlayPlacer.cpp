#include "platform/effects/OverlayPlacer.h"

#include "platform/av/Scaler.h"
#include "platform/effects/Canvas.h"

#include <algorithm>
#include <cmath>

namespace Effects {
namespace {

int evenBelow(double value) {
    const int whole = static_cast<int>(std::floor(value));
    return whole - (((whole % 2) + 2) % 2);
}

} // namespace

Velmor::AV::Rect fittedPlace(Velmor::AV::Size picture, const NormalisedRect& rect,
                             Velmor::AV::Size frame) {
    const double width = rect.width * frame.width;
    const double height = rect.height * frame.height;
    const double scale = std::min(width / picture.width, height / picture.height);
    const int placedWidth = std::max(2, static_cast<int>(std::lround(picture.width * scale)));
    const int placedHeight = std::max(2, static_cast<int>(std::lround(picture.height * scale)));
    return {evenBelow(rect.x * frame.width + (width - placedWidth) / 2),
            evenBelow(rect.y * frame.height + (height - placedHeight) / 2), placedWidth,
            placedHeight};
}

class OverlayPlacer::Private {
public:
    Velmor::AV::Scaler scaler{1};
};

OverlayPlacer::OverlayPlacer()
    : d(std::make_unique<Private>()) {}

OverlayPlacer::~OverlayPlacer() = default;
OverlayPlacer::OverlayPlacer(OverlayPlacer&&) noexcept = default;
OverlayPlacer& OverlayPlacer::operator=(OverlayPlacer&&) noexcept = default;

PlacedPicture OverlayPlacer::place(const Velmor::AV::Frame& picture, const NormalisedRect& rect,
                                   Velmor::AV::Size frame) {
    const Velmor::AV::Rect place =
        fittedPlace(Velmor::AV::Size{picture.width(), picture.height()}, rect, frame);
    PlacedPicture placed{Velmor::AV::Frame::picture(place.width, place.height, overlayFormat()),
                         place.x, place.y};
    d->scaler.scale(picture, placed.picture);
    return placed;
}

} // namespace Effects
