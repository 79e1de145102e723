#pragma once

#include "platform/render/VideoSource.h"

#include <cstdint>

namespace Composition {
class Compositor;
}

namespace Velmor::Render {

class Stop;

// The composed pictures of a project, frames [first, end) of its output, timed from 0 in frames
// of the output's rate. Each picture is composed from the edit and its index alone, so a render
// that begins at a frame gives the pictures the whole render gives there.
//
// One thread at a time; the compositor and `stop` must outlive it.
class ProjectVideo : public VideoSource {
public:
    ProjectVideo(Composition::Compositor& compositor, std::int64_t first, std::int64_t end,
                 const Stop& stop);

    VideoFormat format() const override;
    // Throws what composing throws, and Cancelled when the render stops.
    bool next(AV::Frame& frame) override;

private:
    Composition::Compositor& compositor;
    const Stop& stop;
    const std::int64_t first;
    const std::int64_t end;
    std::int64_t index;
};

} // namespace Velmor::Render
