#include "platform/mix/MixAnalysis.h"

#include "platform/mix/Ducker.h"
#include "platform/mix/HopMeter.h"
#include "platform/mix/LoudnessMeter.h"
#include "platform/mix/PeakLimiter.h"
#include "platform/mix/TrackMix.h"

#include <algorithm>
#include <optional>

namespace Mixing {
namespace {

// Below the true-peak limit of -1 dBTP, by a margin for the gains' own movement between hops.
constexpr double ceilingDb = -1.5;
// ebur128's floor: a mix at or below it has nothing to measure.
constexpr double silentLufs = -70;
constexpr int hopsPerBlock = 10;

bool ducks(const MixPlan& plan) {
    if (plan.video.voices.empty())
        return false;
    return std::any_of(plan.audio.begin(), plan.audio.end(),
                       [](const TrackPlan& track) { return track.duck.has_value(); });
}

// One pass over the timeline, block by block from its start.
class Pass {
public:
    Pass(const MixPlan& plan, ISoundReaders& readers, MixAnalysis& analysis)
        : plan(plan)
        , hop(analysisHop(plan.sampleRate))
        , tracks(plan, readers)
        , analysis(analysis) {
        analysis.ducks.assign(plan.audio.size(), GainCurve(hop));
        for (std::size_t index = 0; ducks(plan) && index < plan.audio.size(); ++index) {
            if (plan.audio[index].duck)
                duckers.emplace_back(*plan.audio[index].duck, plan.sampleRate,
                                     analysis.ducks[index]);
        }
        if (plan.loudnessLufs && plan.hasSound()) {
            loudness.emplace(plan.sampleRate, 2);
            hops.emplace(plan.sampleRate, 2, hop);
        }
    }

    bool needed() const { return !duckers.empty() || loudness; }

    void run() {
        for (std::int64_t at = 0; at < plan.samples; at += hop * hopsPerBlock) {
            const int samples =
                static_cast<int>(std::min<std::int64_t>(hop * hopsPerBlock, plan.samples - at));
            Velmor::AV::Frame mix = tracks.videoTrack(at, samples);
            for (Ducker& ducker : duckers)
                ducker.feed(mix);
            if (!loudness)
                continue;
            tracks.addAudioTracks(mix, at, analysis.ducks);
            mix.setTimestamp(at);
            loudness->add(mix);
            hops->add(mix);
        }
        for (Ducker& ducker : duckers)
            ducker.finish();
        if (loudness)
            settleLoudness();
    }

private:
    void settleLoudness() {
        const double measured = loudness->finish();
        const HopLevels levels = hops->finish();
        if (measured <= silentLufs)
            return;
        analysis.measuredLufs = measured;
        analysis.gainDb = *plan.loudnessLufs - measured;
        analysis.master = limitedGain(levels, hop, analysis.gainDb, ceilingDb);
    }

    const MixPlan& plan;
    const int hop;
    TrackMix tracks;
    MixAnalysis& analysis;
    std::vector<Ducker> duckers;
    std::optional<LoudnessMeter> loudness;
    std::optional<HopMeter> hops;
};

} // namespace

int analysisHop(int sampleRate) {
    return std::max(1, sampleRate / 100);
}

MixAnalysis analyseMix(const MixPlan& plan, ISoundReaders& readers) {
    MixAnalysis analysis;
    Pass pass(plan, readers, analysis);
    if (pass.needed())
        pass.run();
    return analysis;
}

} // namespace Mixing
