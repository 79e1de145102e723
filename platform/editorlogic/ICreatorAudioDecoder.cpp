#include "platform/editorlogic/ICreatorAudioDecoder.h"

namespace Media {

ICreatorAudioDecoder::~ICreatorAudioDecoder() = default;

} // namespace Media
