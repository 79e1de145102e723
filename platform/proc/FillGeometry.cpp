#include "platform/proc/FillGeometry.h"

#include "platform/proc/IResize.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace Velmor::Proc {
namespace {

std::string sizeText(AV::Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

bool isPositive(AV::Size size) {
    return size.width > 0 && size.height > 0;
}

// numerator / denominator, halves rounded up.
int roundedQuotient(std::int64_t numerator, std::int64_t denominator) {
    return static_cast<int>((2 * numerator + denominator) / (2 * denominator));
}

int alignedDown(int value, int unit) {
    return value - value % unit;
}

struct Span {
    int offset;
    int length;
};

struct AxisGeometry {
    Span source;
    Span target;
};

// One axis of a picture of sourceLength scaled by scaleNumerator / scaleDenominator: barred
// when it fits in targetLength, else cropped to the part that covers it.
AxisGeometry placeScaled(int sourceLength, int targetLength, std::int64_t scaleNumerator,
                         std::int64_t scaleDenominator, int unit) {
    if (sourceLength * scaleNumerator == targetLength * scaleDenominator)
        return {{0, sourceLength}, {0, targetLength}};
    if (sourceLength * scaleNumerator < targetLength * scaleDenominator) {
        const int units = roundedQuotient(sourceLength * scaleNumerator, scaleDenominator * unit);
        const int length = std::min(std::max(units, 1) * unit, targetLength);
        return {{0, sourceLength}, {alignedDown((targetLength - length) / 2, unit), length}};
    }
    const int shown =
        std::min(roundedQuotient(targetLength * scaleDenominator, scaleNumerator), sourceLength);
    return {{alignedDown((sourceLength - shown) / 2, unit), shown}, {0, targetLength}};
}

AxisGeometry placeUnscaled(int sourceLength, int targetLength, int unit) {
    if (sourceLength <= targetLength)
        return {{0, sourceLength},
                {alignedDown((targetLength - sourceLength) / 2, unit), sourceLength}};
    return {{alignedDown((sourceLength - targetLength) / 2, unit), targetLength},
            {0, targetLength}};
}

FillGeometry combine(const AxisGeometry& horizontal, const AxisGeometry& vertical) {
    return {{horizontal.source.offset, vertical.source.offset, horizontal.source.length,
             vertical.source.length},
            {horizontal.target.offset, vertical.target.offset, horizontal.target.length,
             vertical.target.length}};
}

// Both axes scaled by target / source of one of them.
FillGeometry scaleBy(std::int64_t numerator, std::int64_t denominator, AV::Size source,
                     AV::Size target, AV::Size unit) {
    return combine(placeScaled(source.width, target.width, numerator, denominator, unit.width),
                   placeScaled(source.height, target.height, numerator, denominator, unit.height));
}

} // namespace

FillGeometry fillGeometry(AV::Size source, AV::Size target, SettingsResizer::CustomModes mode,
                          AV::Size chromaBlock) {
    if (!isPositive(target))
        throw std::invalid_argument("Can not resize to " + sizeText(target)
                                    + ": the width and the height must be positive");
    if (!isPositive(source))
        throw std::invalid_argument("Can not resize a picture of " + sizeText(source)
                                    + ": the width and the height must be positive");
    if (!isPositive(chromaBlock))
        throw std::invalid_argument("Can not align to a chroma block of " + sizeText(chromaBlock));
    // Compared as cross products, so that equal proportions are exactly equal.
    const bool sourceIsWider =
        std::int64_t{source.width} * target.height >= std::int64_t{target.width} * source.height;
    switch (mode) {
    case SettingsResizer::Fit:
        return sourceIsWider ? scaleBy(target.width, source.width, source, target, chromaBlock)
                             : scaleBy(target.height, source.height, source, target, chromaBlock);
    case SettingsResizer::Fill:
        return sourceIsWider ? scaleBy(target.height, source.height, source, target, chromaBlock)
                             : scaleBy(target.width, source.width, source, target, chromaBlock);
    case SettingsResizer::Stretch:
        return {{0, 0, source.width, source.height}, {0, 0, target.width, target.height}};
    case SettingsResizer::FitWidth:
        return scaleBy(target.width, source.width, source, target, chromaBlock);
    case SettingsResizer::FitHeight:
        return scaleBy(target.height, source.height, source, target, chromaBlock);
    case SettingsResizer::Center:
        return combine(placeUnscaled(source.width, target.width, chromaBlock.width),
                       placeUnscaled(source.height, target.height, chromaBlock.height));
    }
    IResize::CustomModes2String(mode); // throws its std::out_of_range for any other number
    throw std::out_of_range("No resize mode with the number " + std::to_string(mode));
}

std::array<AV::Rect, 4> barsAround(const AV::Rect& painted, AV::Size target) {
    const int paintedBottom = painted.y + painted.height;
    const int paintedRight = painted.x + painted.width;
    return {AV::Rect{0, 0, target.width, painted.y},
            AV::Rect{0, paintedBottom, target.width, target.height - paintedBottom},
            AV::Rect{0, painted.y, painted.x, painted.height},
            AV::Rect{paintedRight, painted.y, target.width - paintedRight, painted.height}};
}

} // namespace Velmor::Proc
