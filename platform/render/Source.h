#pragma once

#include "platform/render/FrameSource.h"

namespace Velmor::Render {

// A frame source that says what it hands out (VideoFormat or AudioFormat). The format is known
// once the source is made and never changes; any thread may ask for it.
template <typename Format> class Source : public FrameSource {
public:
    virtual Format format() const = 0;
};

} // namespace Velmor::Render
