#include "platform/editorlogic/ICreatorVideoDecoder.h"

namespace Media {

ICreatorVideoDecoder::~ICreatorVideoDecoder() = default;

} // namespace Media
