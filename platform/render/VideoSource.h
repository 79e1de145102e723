#pragma once

#include "platform/render/Source.h"
#include "platform/render/VideoFormat.h"

namespace Velmor::Render {

// Pictures in output order, of format().width x height and format().pixelFormat, timed in
// format().timeBase from 0: the first picture it hands out is at 0, whatever part of its input
// it renders, and the picture at a time depends only on the input and that time. Timestamps
// rise; a picture lasts until the next one's.
using VideoSource = Source<VideoFormat>;

} // namespace Velmor::Render
