#pragma once

namespace Velmor::Render {

// What an audio source hands out: blocks of samples of one format, rate and channel count, timed
// in 1/sampleRate.
struct AudioFormat {
    // An AVSampleFormat.
    int sampleFormat = -1;
    int sampleRate = 0;
    int channels = 0;
};

} // namespace Velmor::Render
