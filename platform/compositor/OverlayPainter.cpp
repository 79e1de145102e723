#include "platform/compositor/OverlayPainter.h"

#include "platform/effects/OverlayPlacer.h"
#include "platform/effects/TitleRenderer.h"

#include <algorithm>
#include <map>

namespace Composition {

class OverlayPainter::Private {
public:
    Velmor::AV::Size size;
    Effects::OverlayPlacer placer;
    std::map<std::size_t, Effects::PlacedPicture> kept;

    const Effects::PlacedPicture& keptPicture(const Project::OverlayClip& clip, std::size_t key,
                                              const SourcePicture& source) {
        auto found = kept.find(key);
        if (found != kept.end())
            return found->second;
        Effects::PlacedPicture placed = clip.kind == Project::OverlayClip::Kind::Text
                                            ? Effects::renderTitle(clip.text, clip.style, size)
                                            : placer.place(source(), clip.rect, size);
        return kept.emplace(key, std::move(placed)).first->second;
    }
};

OverlayPainter::OverlayPainter(Velmor::AV::Size size)
    : d(std::make_unique<Private>()) {
    d->size = size;
}

OverlayPainter::~OverlayPainter() = default;

double OverlayPainter::fadeShare(const Project::OverlayClip& clip, double offsetMs) {
    double share = 1;
    if (clip.fadeInMs > 0)
        share = std::min(share, offsetMs / clip.fadeInMs);
    if (clip.fadeOutMs > 0)
        share = std::min(share, (clip.lengthMs - offsetMs) / clip.fadeOutMs);
    return std::clamp(share, 0.0, 1.0);
}

void OverlayPainter::paint(const Project::OverlayClip& clip, std::size_t key,
                           const SourcePicture& source, double offsetMs,
                           Velmor::AV::Frame& target) {
    const double opacity = clip.opacity * fadeShare(clip, offsetMs);
    if (opacity <= 0)
        return;
    if (clip.kind == Project::OverlayClip::Kind::Video) {
        Effects::blendOver(target, d->placer.place(source(), clip.rect, d->size), opacity);
        return;
    }
    Effects::blendOver(target, d->keptPicture(clip, key, source), opacity);
}

} // namespace Composition
