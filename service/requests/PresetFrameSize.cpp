#include "service/requests/PresetFrameSize.h"

PresetFrameSize::PresetFrameSize()
    : width(ORIGINAL)
    , height(ORIGINAL) {}

PresetFrameSize::PresetFrameSize(std::int32_t width, std::int32_t height)
    : width(width)
    , height(height) {}

bool PresetFrameSize::isOriginal() const {
    return width == ORIGINAL && height == ORIGINAL;
}

bool PresetFrameSize::isEven() const {
    return (width & 1) == 0 && (height & 1) == 0;
}

bool PresetFrameSize::operator==(const PresetFrameSize& other) const {
    return width == other.width && height == other.height;
}

QString PresetFrameSize::originalSizeString() {
    return QStringLiteral("original");
}
