#include "platform/compositor/ClipPainter.h"

#include "platform/av/Picture.h"
#include "platform/av/Scaler.h"
#include "platform/effects/Canvas.h"
#include "platform/effects/PanZoom.h"
#include "platform/proc/FillGeometry.h"

#include <map>

namespace Composition {

class ClipPainter::Private {
public:
    Velmor::AV::Size size;
    Effects::YuvColour background;
    Velmor::AV::Scaler scaler{1};
    Effects::PanZoomPainter panZoom;
    std::map<std::size_t, Velmor::AV::Frame> stills;

    Velmor::AV::Frame fitted(const Velmor::AV::Frame& source,
                             Velmor::Proc::SettingsResizer::CustomModes mode) {
        Velmor::AV::Frame canvas = Effects::canvas(size, background);
        const Velmor::Proc::FillGeometry geometry =
            Velmor::Proc::fillGeometry(Velmor::AV::Size{source.width(), source.height()}, size,
                                       mode, Velmor::AV::chromaBlock(Effects::composingFormat()));
        scaler.scale(source, geometry.source, canvas, geometry.target);
        // libswscale may write past the painted rows' end; the bars go on after it.
        for (const Velmor::AV::Rect& bar : Velmor::Proc::barsAround(geometry.target, size))
            Effects::fillRect(canvas, bar, background);
        return canvas;
    }
};

ClipPainter::ClipPainter(Velmor::AV::Size size, Effects::Colour background)
    : d(std::make_unique<Private>()) {
    d->size = size;
    d->background = Effects::toYuv(background);
}

ClipPainter::~ClipPainter() = default;

Velmor::AV::Frame ClipPainter::paint(const Project::VideoClip& clip, std::size_t key,
                                     const SourcePicture& source, double progress) {
    if (clip.kind == Project::VideoClip::Kind::Colour || !source)
        return Effects::canvas(d->size, Effects::toYuv(clip.colour));
    if (clip.panZoom) {
        Velmor::AV::Frame canvas =
            Velmor::AV::Frame::picture(d->size.width, d->size.height, Effects::composingFormat());
        d->panZoom.paint(source(), clip.panZoom->at(progress), canvas);
        return canvas;
    }
    if (clip.kind != Project::VideoClip::Kind::Still)
        return d->fitted(source(), clip.fit);
    auto kept = d->stills.find(key);
    if (kept == d->stills.end())
        kept = d->stills.emplace(key, d->fitted(source(), clip.fit)).first;
    return Velmor::AV::copyOf(kept->second);
}

} // namespace Composition
