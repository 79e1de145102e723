#include "platform/av/Upright.h"

#include "platform/av/FilterChain.h"
#include "platform/av/Picture.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Velmor::AV {
namespace {

// Clockwise quarter turns, 0 to 3: how far the stored picture turns to stand upright.
int quarterTurns(int rotation) {
    const int turns = static_cast<int>(std::lround(-rotation / 90.0)) % 4;
    return turns < 0 ? turns + 4 : turns;
}

bool isSquare(Rational sampleAspectRatio) {
    return sampleAspectRatio.num <= 0 || sampleAspectRatio.den <= 0
           || sampleAspectRatio.num == sampleAspectRatio.den;
}

Size stretched(Size stored, Rational sampleAspectRatio) {
    if (isSquare(sampleAspectRatio))
        return stored;
    const double width =
        static_cast<double>(stored.width) * sampleAspectRatio.num / sampleAspectRatio.den;
    return {std::max(1, static_cast<int>(std::lround(width))), stored.height};
}

std::vector<FilterStep> filters(Size stored, int rotation, Rational sampleAspectRatio,
                                bool mirrored) {
    std::vector<FilterStep> chain;
    if (!isSquare(sampleAspectRatio)) {
        const Size square = stretched(stored, sampleAspectRatio);
        chain.push_back({"scale",
                         {{"w", std::to_string(square.width)},
                          {"h", std::to_string(square.height)},
                          {"flags", "bicubic"}}});
    }
    // A mirroring matrix is a flip and then a turn half a turn from the angle it reads as.
    if (mirrored) {
        chain.push_back({"hflip", {}});
        rotation += 180;
    }
    switch (quarterTurns(rotation)) {
    case 1:
        chain.push_back({"transpose", {{"dir", "clock"}}});
        break;
    case 2:
        chain.push_back({"hflip", {}});
        chain.push_back({"vflip", {}});
        break;
    case 3:
        chain.push_back({"transpose", {{"dir", "cclock"}}});
        break;
    default:
        break;
    }
    return chain;
}

} // namespace

class Upright::Private {
public:
    Size size;
    // None when pictures show as they are stored.
    std::optional<FilterChain> chain;
};

Upright::Upright(Size stored, int pixelFormat, int rotation, Rational sampleAspectRatio,
                 bool mirrored)
    : d(std::make_unique<Private>()) {
    d->size = displaySize(stored, rotation, sampleAspectRatio);
    const std::vector<FilterStep> chain = filters(stored, rotation, sampleAspectRatio, mirrored);
    if (!chain.empty())
        d->chain.emplace(stored, pixelFormat, chain, pixelFormat);
}

Upright::~Upright() = default;

Size Upright::displaySize(Size stored, int rotation, Rational sampleAspectRatio) {
    const Size square = stretched(stored, sampleAspectRatio);
    if (quarterTurns(rotation) % 2 == 1)
        return {square.height, square.width};
    return square;
}

bool Upright::changes() const {
    return d->chain.has_value();
}

Size Upright::size() const {
    return d->size;
}

Frame Upright::run(const Frame& picture) {
    if (!d->chain)
        return reference(picture);
    Frame upright = d->chain->run(picture);
    upright.setTimestamp(picture.timestamp());
    return upright;
}

} // namespace Velmor::AV
