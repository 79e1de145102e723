#pragma once

#include "platform/av/Frame.h"
#include "platform/mix/GainCurve.h"
#include "platform/mix/MixPlan.h"
#include "platform/mix/SoundReader.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Mixing {

// The sound of a plan's tracks, block by block in order of time: the video track's, and the
// audio tracks' added to it, each lowered by its duck gains. Blocks are planar float in the
// plan's rate, stereo. One thread at a time.
class TrackMix {
public:
    // The readers are borrowed and must outlive the mix.
    TrackMix(const MixPlan& plan, ISoundReaders& readers);
    ~TrackMix();

    // The video track's sound of [at, at + samples).
    Velmor::AV::Frame videoTrack(std::int64_t at, int samples);
    // Adds the audio tracks' sound of the block's samples, which start at `at`, to it; track i
    // lowered by ducks[i] (an empty curve leaves it as it is).
    void addAudioTracks(Velmor::AV::Frame& mix, std::int64_t at,
                        const std::vector<GainCurve>& ducks);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Mixing
