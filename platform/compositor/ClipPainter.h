#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"
#include "platform/effects/Colour.h"
#include "platform/project/Edit.h"

#include <functional>
#include <memory>

namespace Composition {

// Gives a clip's source picture at the time being drawn, asked only when it is needed (a kept
// picture needs none); empty for clips without a source.
using SourcePicture = std::function<const Velmor::AV::Frame&()>;

// Paints the clips of a video track into pictures of the output: a colour, or a media file's
// picture fitted by the clip's mode on the background colour, or moved by its pan-and-zoom. A
// still picture without pan-and-zoom is fitted once and kept. One thread at a time.
class ClipPainter {
public:
    ClipPainter(Velmor::AV::Size size, Effects::Colour background);
    ~ClipPainter();

    // The clip's picture at `progress` through it (0 to 1), from `source`: a new composing
    // picture of the output's size. `key` names the clip for the cache.
    Velmor::AV::Frame paint(const Project::VideoClip& clip, std::size_t key,
                            const SourcePicture& source, double progress);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Composition
