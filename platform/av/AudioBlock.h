#pragma once

#include "platform/av/Frame.h"

#include <string>

namespace Velmor::AV {

// The shape of blocks of samples: an AVSampleFormat, a rate in Hz and a number of channels in
// their default order (stereo for 2).
struct AudioShape {
    int sampleFormat = -1;
    int sampleRate = 0;
    int channels = 0;

    bool operator==(const AudioShape& other) const {
        return sampleFormat == other.sampleFormat && sampleRate == other.sampleRate
               && channels == other.channels;
    }
    bool operator!=(const AudioShape& other) const { return !(*this == other); }
};

// Blocks of planar float samples (fltp), for the stages that add and weigh samples by hand
// without FFmpeg's headers.

// AV_SAMPLE_FMT_FLTP.
int planarFloat();
// The AVSampleFormat named as ffmpeg names it ("fltp", "s16"). Throws std::invalid_argument
// "No sample format named \"<name>\"" for any other text.
int sampleFormat(const std::string& name);
// A block of `samples` samples of silence in buffers of its own, of planar float in the
// channels' default order, untimed.
Frame silentBlock(int sampleRate, int channels, int samples);
// The shape of a block.
AudioShape shapeOf(const Frame& block);
// The samples of one channel of a planar float block. Throws std::invalid_argument for a block
// of another format and std::out_of_range for a channel it does not have. Writing changes the
// block's buffers, which must then be its own (silentBlock, or writable after filtering).
float* channelOf(Frame& block, int channel);
const float* channelOf(const Frame& block, int channel);
// Adds the samples of `from` to those of `into` from its sample `offset` on; both planar float
// of as many channels. Throws std::out_of_range when `from` does not fit there.
void addSamples(Frame& into, const Frame& from, int offset = 0);
// The value of a frame's metadata entry (the libavfilter filters' measurements); empty when the
// frame has none of that key.
std::string metadataOf(const Frame& frame, const std::string& key);

} // namespace Velmor::AV
