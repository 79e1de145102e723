#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"
#include "platform/av/Rational.h"

#include <memory>

namespace Velmor::AV {

// Pictures as they are meant to be seen: turned by their stream's rotation and stretched by its
// sample aspect ratio to square pixels. A phone's portrait clip stands upright, anamorphic
// footage takes its display shape. One thread at a time.
class Upright {
public:
    // `rotation`: degrees counterclockwise, as StreamInfo::rotation; taken to the nearest
    // quarter turn. `mirrored`: as StreamInfo::mirrored, flipped left to right first and turned
    // half a turn more. Throws MediaError as FilterChain does.
    Upright(Size stored, int pixelFormat, int rotation, Rational sampleAspectRatio,
            bool mirrored = false);
    Upright(const Upright&) = delete;
    Upright& operator=(const Upright&) = delete;
    ~Upright();

    // The size of a picture stored at `stored` once upright in square pixels: the width
    // stretched by the sample aspect ratio to the nearest pixel, then turned.
    static Size displaySize(Size stored, int rotation, Rational sampleAspectRatio);

    // False for pictures that show as they are stored.
    bool changes() const;
    Size size() const;
    // The picture upright in square pixels, its timestamp kept; a reference to it when nothing
    // changes. Throws as FilterChain::run does.
    Frame run(const Frame& picture);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
