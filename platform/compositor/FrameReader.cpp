#include "platform/compositor/FrameReader.h"

namespace Composition {

IFrameReader::~IFrameReader() = default;
IFrameReaders::~IFrameReaders() = default;

} // namespace Composition
