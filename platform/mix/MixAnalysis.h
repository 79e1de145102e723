#pragma once

#include "platform/mix/GainCurve.h"
#include "platform/mix/MixPlan.h"
#include "platform/mix/SoundReader.h"

#include <optional>
#include <vector>

namespace Mixing {

// What the whole timeline fixes once, before any of the mix renders, so that the mix at a time
// does not depend on where a render began.
struct MixAnalysis {
    // For each audio track its duck gains; empty for a track that does not duck (or when the
    // video track has no sound to duck under).
    std::vector<GainCurve> ducks;
    // The gains of the whole mix that bring it to the project's loudness with its true peaks
    // at most -1 dBTP; empty without a loudness, or for a mix too quiet to measure.
    GainCurve master;
    // The mix's integrated loudness before those gains, when measured, and the gain that
    // brings it to the project's.
    std::optional<double> measuredLufs;
    double gainDb = 0;
};

// The gains are given every hop: a hundredth of a second.
int analysisHop(int sampleRate);

// Reads the timeline from its start to its end, once: the video track's sound for the ducks,
// and, for a project with a loudness, the whole mix for its loudness (libavfilter's ebur128)
// and its true peaks. Reads nothing when the plan neither ducks nor has a loudness. Throws what
// reading the media throws.
MixAnalysis analyseMix(const MixPlan& plan, ISoundReaders& readers);

} // namespace Mixing
