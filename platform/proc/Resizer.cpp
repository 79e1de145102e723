#include "platform/proc/Resizer.h"

#include "platform/av/Picture.h"
#include "platform/av/Scaler.h"
#include "platform/proc/FillGeometry.h"

#include <algorithm>

namespace Velmor::Proc {

class Resizer::Private {
public:
    Private(const SettingsResizer& settings, int threads)
        : settings(settings)
        , scaler(threads) {}

    int outputFormat(const AV::Frame& source) const {
        return settings.pixelFormat >= 0 ? settings.pixelFormat : source.format();
    }

    const SettingsResizer settings;
    AV::Scaler scaler;
};

Resizer::Resizer(const SettingsResizer& settings, int threads)
    : d(std::make_unique<Private>(settings, threads)) {
    // Refuses a bad size, mode or format now rather than at the first frame.
    fillGeometry({1, 1}, {settings.width, settings.height}, settings.mode);
    if (settings.pixelFormat >= 0)
        AV::chromaBlock(settings.pixelFormat);
}

Resizer::~Resizer() = default;

AV::Frame Resizer::Resize(const AV::Frame& source) {
    const AV::Size sourceSize{source.width(), source.height()};
    const AV::Size targetSize{d->settings.width, d->settings.height};
    if (sourceSize.width <= 0 || sourceSize.height <= 0)
        fillGeometry(sourceSize, targetSize, d->settings.mode); // throws its refusal
    const int outputFormat = d->outputFormat(source);
    if (sourceSize == targetSize && source.format() == outputFormat)
        return AV::reference(source);

    // Offsets aligned for both formats keep chroma in place on the way in and on the way out.
    const AV::Size sourceBlock = AV::chromaBlock(source.format());
    const AV::Size outputBlock = AV::chromaBlock(outputFormat);
    const FillGeometry geometry = fillGeometry(sourceSize, targetSize, d->settings.mode,
                                               {std::max(sourceBlock.width, outputBlock.width),
                                                std::max(sourceBlock.height, outputBlock.height)});

    AV::Frame output = AV::Frame::picture(targetSize.width, targetSize.height, outputFormat);
    AV::copyProperties(output, source);
    d->scaler.scale(source, geometry.source, output, geometry.target);
    // After scaling: libswscale writes rows in whole blocks, into the bar on the right.
    for (const AV::Rect& bar : barsAround(geometry.target, targetSize)) {
        if (!bar.isEmpty())
            AV::paintBlack(output, bar);
    }
    return output;
}

const SettingsResizer& Resizer::settings() const {
    return d->settings;
}

} // namespace Velmor::Proc
