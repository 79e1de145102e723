#include "platform/mix/Mixer.h"

#include "platform/av/AudioBlock.h"
#include "platform/mix/FileSoundReaders.h"
#include "platform/mix/MixAnalysis.h"
#include "platform/mix/MixPlan.h"
#include "platform/mix/TrackMix.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>

namespace Mixing {
namespace {

constexpr int hopsPerBlock = 10;

} // namespace

class Mixer::Private {
public:
    Private(const Project::Edit& edit, std::int64_t firstSample,
            std::shared_ptr<ISoundReaders> readers)
        : plan(planMix(edit))
        , readers(readers ? std::move(readers) : std::make_shared<FileSoundReaders>())
        , first(firstSample)
        , position(firstSample) {}

    Velmor::AV::Frame mixOf(std::int64_t at, int samples) {
        if (!analysis)
            analysis = analyseMix(plan, *readers);
        if (!tracks)
            tracks = std::make_unique<TrackMix>(plan, *readers);
        Velmor::AV::Frame block = tracks->videoTrack(at, samples);
        tracks->addAudioTracks(block, at, analysis->ducks);
        analysis->master.apply(block, at);
        return block;
    }

    const MixPlan plan;
    const std::shared_ptr<ISoundReaders> readers;
    const std::int64_t first;
    std::int64_t position;
    bool finished = false;
    std::optional<MixAnalysis> analysis;
    std::unique_ptr<TrackMix> tracks;
};

Mixer::Mixer(const Project::Edit& edit, std::int64_t firstSample,
             std::shared_ptr<ISoundReaders> readers) {
    if (firstSample < 0)
        throw std::invalid_argument("A mix can not start before the project, at sample "
                                    + std::to_string(firstSample));
    d = std::make_unique<Private>(edit, firstSample, std::move(readers));
}

Mixer::~Mixer() = default;

AudioFormat Mixer::format() const {
    return {Velmor::AV::planarFloat(), d->plan.sampleRate, 2};
}

std::int64_t Mixer::sampleCount() const {
    return d->plan.samples;
}

bool Mixer::next(Velmor::AV::Frame& frame) {
    if (d->finished || d->position >= d->plan.samples) {
        finish();
        return false;
    }
    const int samples = static_cast<int>(std::min<std::int64_t>(
        analysisHop(d->plan.sampleRate) * hopsPerBlock, d->plan.samples - d->position));
    Velmor::AV::Frame block = d->mixOf(d->position, samples);
    block.setTimestamp(d->position - d->first);
    d->position += samples;
    frame = std::move(block);
    return true;
}

void Mixer::finish() {
    d->finished = true;
    d->tracks.reset();
}

} // namespace Mixing
