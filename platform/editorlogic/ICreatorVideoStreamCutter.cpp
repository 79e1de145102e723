#include "platform/editorlogic/ICreatorVideoStreamCutter.h"

namespace Media {

ICreatorVideoStreamCutter::~ICreatorVideoStreamCutter() = default;

} // namespace Media
