#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"
#include "platform/compositor/ClipPainter.h"
#include "platform/project/Edit.h"

#include <memory>

namespace Composition {

// Lays overlay clips over composed pictures: titles drawn once, still pictures fitted once into
// their rectangle, a video's pictures fitted frame by frame, each with its opacity and fades.
// One thread at a time.
class OverlayPainter {
public:
    explicit OverlayPainter(Velmor::AV::Size size);
    ~OverlayPainter();

    // Lays the clip over `target` at `offsetMs` into it; `source` gives its picture at that time
    // (empty for a title). `key` names the clip for the cache.
    void paint(const Project::OverlayClip& clip, std::size_t key, const SourcePicture& source,
               double offsetMs, Velmor::AV::Frame& target);

    // The share of the clip's opacity at `offsetMs` into it, its fades applied: 0 to 1.
    static double fadeShare(const Project::OverlayClip& clip, double offsetMs);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Composition
