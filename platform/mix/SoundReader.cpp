#include "platform/mix/SoundReader.h"

namespace Mixing {

ISoundReader::~ISoundReader() = default;

ISoundReaders::~ISoundReaders() = default;

} // namespace Mixing
