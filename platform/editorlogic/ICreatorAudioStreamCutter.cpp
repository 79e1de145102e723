#include "platform/editorlogic/ICreatorAudioStreamCutter.h"

namespace Media {

ICreatorAudioStreamCutter::~ICreatorAudioStreamCutter() = default;

} // namespace Media
