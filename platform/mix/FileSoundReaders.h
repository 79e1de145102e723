#pragma once

#include "platform/mix/SoundReader.h"

namespace Mixing {

// Readers of media files through the media libraries: each opens its file, seeks a little
// before its start time (so that codecs that carry state from block to block have settled by
// then), decodes the best audio stream, converts it to the mix's shape and drops what comes
// before the start. Times count from the file's start, as the video clips' do.
class FileSoundReaders : public ISoundReaders {
public:
    std::unique_ptr<ISoundReader> open(const QString& file, std::int64_t fromMs,
                                       Velmor::AV::AudioShape shape) override;
};

} // namespace Mixing
