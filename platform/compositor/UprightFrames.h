#pragma once

#include "platform/av/Frame.h"
#include "platform/av/MediaInfo.h"
#include "platform/av/Upright.h"

#include <memory>

namespace Composition {

// A clip's decoded pictures as they are meant to be seen: turned by their stream's rotation,
// mirrored as its display matrix says and stretched to square pixels, so that a phone's clip
// stands upright and anamorphic footage is fitted by its display shape. One thread at a time.
class UprightFrames {
public:
    explicit UprightFrames(const Velmor::AV::StreamInfo& stream);

    // The picture upright; valid until the next call.
    const Velmor::AV::Frame& upright(const Velmor::AV::Frame& decoded);

private:
    const Velmor::AV::StreamInfo stream;
    // Made for the first picture's size and format, and again when they change.
    std::unique_ptr<Velmor::AV::Upright> turn;
    Velmor::AV::Size size;
    int pixelFormat = -1;
    Velmor::AV::Frame shown;
};

} // namespace Composition
