#include "platform/render/FrameSource.h"

namespace Velmor::Render {

FrameSource::~FrameSource() = default;

void FrameSource::finish() {}

} // namespace Velmor::Render
