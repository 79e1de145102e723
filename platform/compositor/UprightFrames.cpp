#include "platform/compositor/UprightFrames.h"

namespace Composition {

UprightFrames::UprightFrames(const Velmor::AV::StreamInfo& stream)
    : stream(stream) {}

const Velmor::AV::Frame& UprightFrames::upright(const Velmor::AV::Frame& decoded) {
    const Velmor::AV::Size stored{decoded.width(), decoded.height()};
    if (!turn || stored.width != size.width || stored.height != size.height
        || decoded.format() != pixelFormat) {
        turn = std::make_unique<Velmor::AV::Upright>(stored, decoded.format(), stream.rotation,
                                                     stream.sampleAspectRatio, stream.mirrored);
        size = stored;
        pixelFormat = decoded.format();
    }
    if (!turn->changes())
        return decoded;
    shown = turn->run(decoded);
    return shown;
}

} // namespace Composition
