#pragma once

#include "platform/av/Frame.h"

#include <cstdint>
#include <memory>

namespace Velmor::AV {

// Re-chunks blocks of samples into frames of the size an encoder takes (1024 for AAC). Frames
// out are numbered by their first sample: timestamps in 1/sampleRate from 0. One thread at a
// time.
class AudioFifo {
public:
    // `format` an AVSampleFormat; `frameSize` 0 passes blocks on at the size they come.
    AudioFifo(int format, int sampleRate, int channels, int frameSize);
    AudioFifo(const AudioFifo&) = delete;
    AudioFifo& operator=(const AudioFifo&) = delete;
    ~AudioFifo();

    // Adds `count` samples of the block from sample `skip` on; count below 0: to its end.
    // The block must have the fifo's format and channels.
    void write(const Frame& block, int skip = 0, int count = -1);
    // Samples in, not yet read.
    int size() const;
    // A frame of frameSize samples once that many are in; with `flush` (at the end of the
    // input) also the last, shorter one. False when there is none.
    bool read(Frame& frame, bool flush = false);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
