#include "platform/render/FrameSink.h"

namespace Velmor::Render {

FrameSink::~FrameSink() = default;

} // namespace Velmor::Render
