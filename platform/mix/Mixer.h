#pragma once

#include "platform/av/Frame.h"
#include "platform/mix/SoundReader.h"
#include "platform/project/Edit.h"

#include <cstdint>
#include <memory>

namespace Mixing {

// The shape of the blocks a sound source gives.
struct AudioFormat {
    // An AVSampleFormat.
    int sampleFormat = -1;
    int sampleRate = 0;
    int channels = 0;
};

// The sound of a validated edit, as a source of blocks of samples: the video track's clips'
// own sound at their volume, crossing over with equal power in transitions; the audio tracks'
// clips at their times, volumes, fades and loops, cut at the project's end, each track lowered
// under the video track's sound by its duck; the whole normalised to the project's loudness
// with true peaks at most -1 dBTP. Planar float, stereo, at the project's sample rate, exactly
// the project's length. The mix at a time depends on the edit and that time alone: a render
// that starts at a range's first sample gives the samples the whole render gives there. What
// the whole timeline fixes (ducks, loudness) is read once, at the first block. One thread at a
// time.
class Mixer {
public:
    // Starts at output sample `firstSample` of the project (SampleTimes::sampleAt of a time);
    // a start at or past the end gives no block. Reads media through `readers`, by default
    // through the media libraries (FileSoundReaders). Throws std::invalid_argument for a start
    // before 0.
    explicit Mixer(const Project::Edit& edit, std::int64_t firstSample = 0,
                   std::shared_ptr<ISoundReaders> readers = nullptr);
    ~Mixer();

    AudioFormat format() const;
    // The project's length in samples, from its start.
    std::int64_t sampleCount() const;

    // Puts the next block into `frame`, timed in samples from the first sample of this render;
    // false at the end and on every call after it. Throws what reading the media throws.
    bool next(Velmor::AV::Frame& frame);
    // Takes no more blocks: lets the media go.
    void finish();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Mixing
