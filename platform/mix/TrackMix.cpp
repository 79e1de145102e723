#include "platform/mix/TrackMix.h"

#include "platform/av/AudioBlock.h"
#include "platform/mix/TrackPlayer.h"

namespace Mixing {

class TrackMix::Private {
public:
    Private(const MixPlan& plan, ISoundReaders& readers)
        : shape{Velmor::AV::planarFloat(), plan.sampleRate, 2}
        , video(plan.video.voices, readers, shape) {
        for (const TrackPlan& track : plan.audio)
            audio.push_back(std::make_unique<TrackPlayer>(track.voices, readers, shape));
    }

    const Velmor::AV::AudioShape shape;
    TrackPlayer video;
    std::vector<std::unique_ptr<TrackPlayer>> audio;
};

TrackMix::TrackMix(const MixPlan& plan, ISoundReaders& readers)
    : d(std::make_unique<Private>(plan, readers)) {}

TrackMix::~TrackMix() = default;

Velmor::AV::Frame TrackMix::videoTrack(std::int64_t at, int samples) {
    Velmor::AV::Frame block =
        Velmor::AV::silentBlock(d->shape.sampleRate, d->shape.channels, samples);
    d->video.addTo(block, at);
    return block;
}

// Adds the tracks by hand: their blocks line up sample for sample. libavfilter's amix takes a
// fixed set of inputs when its graph is configured and waits on each, so clips that come and go
// would each need an input fed with silence over the whole project.
void TrackMix::addAudioTracks(Velmor::AV::Frame& mix, std::int64_t at,
                              const std::vector<GainCurve>& ducks) {
    for (std::size_t index = 0; index < d->audio.size(); ++index) {
        const bool ducked = index < ducks.size() && !ducks[index].empty();
        if (!ducked) {
            d->audio[index]->addTo(mix, at);
            continue;
        }
        Velmor::AV::Frame track =
            Velmor::AV::silentBlock(d->shape.sampleRate, d->shape.channels, mix.samples());
        d->audio[index]->addTo(track, at);
        ducks[index].apply(track, at);
        Velmor::AV::addSamples(mix, track);
    }
}

} // namespace Mixing
