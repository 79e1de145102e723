#include "platform/projectrender/ProjectVideo.h"

#include "platform/av/Picture.h"
#include "platform/compositor/Compositor.h"
#include "platform/render/Cancelled.h"
#include "platform/render/Stop.h"

namespace Velmor::Render {

ProjectVideo::ProjectVideo(Composition::Compositor& compositor, std::int64_t first,
                           std::int64_t end, const Stop& stop)
    : compositor(compositor)
    , stop(stop)
    , first(first)
    , end(end)
    , index(first) {}

VideoFormat ProjectVideo::format() const {
    const AV::Size size = compositor.size();
    const AV::Rational rate = compositor.frameRate();
    return {size.width, size.height, AV::pixelFormat("yuv420p"), rate, {rate.den, rate.num}};
}

bool ProjectVideo::next(AV::Frame& frame) {
    if (stop.requested())
        throw Cancelled();
    if (index >= end)
        return false;
    frame = compositor.frame(index);
    frame.setTimestamp(index - first);
    ++index;
    return true;
}

} // namespace Velmor::Render
