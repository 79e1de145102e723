#include "platform/projectrender/ProjectAudio.h"

#include "platform/av/AudioBlock.h"
#include "platform/av/Resampler.h"
#include "platform/mix/Mixer.h"
#include "platform/render/Cancelled.h"
#include "platform/render/Stop.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace Velmor::Render {
namespace {

// The first `count` samples of a planar float block, in buffers of their own.
AV::Frame firstSamples(const AV::Frame& block, int count) {
    const AV::AudioShape shape = AV::shapeOf(block);
    AV::Frame cut = AV::silentBlock(shape.sampleRate, shape.channels, count);
    for (int channel = 0; channel < shape.channels; ++channel)
        std::memcpy(AV::channelOf(cut, channel), AV::channelOf(block, channel),
                    sizeof(float) * static_cast<std::size_t>(count));
    cut.setTimestamp(block.timestamp());
    return cut;
}

} // namespace

class ProjectAudio::Private {
public:
    Private(Mixing::Mixer& mixer, std::int64_t count, const AudioFormat& format, const Stop& stop)
        : mixer(mixer)
        , count(count)
        , target(format)
        , stop(stop) {
        const Mixing::AudioFormat mixed = mixer.format();
        rate = mixed.sampleRate;
        if (mixed.sampleFormat != format.sampleFormat || mixed.sampleRate != format.sampleRate
            || mixed.channels != format.channels)
            resampler.emplace(format.sampleFormat, format.sampleRate, format.channels);
    }

    Mixing::Mixer& mixer;
    const std::int64_t count;
    const AudioFormat target;
    const Stop& stop;
    int rate = 0;
    std::int64_t given = 0;
    bool mixed = false;
    bool ended = false;
    std::optional<AV::Resampler> resampler;

    // The next block of the mix within the count; false past it.
    bool nextMixed(AV::Frame& block) {
        if (mixed || given >= count || !mixer.next(block)) {
            mixed = true;
            return false;
        }
        const std::int64_t left = count - given;
        if (block.samples() > left)
            block = firstSamples(block, static_cast<int>(left));
        given += block.samples();
        return true;
    }

    bool nextConverted(AV::Frame& frame) {
        AV::Frame block;
        while (nextMixed(block)) {
            frame = resampler->convert(block, {1, rate});
            if (frame.samples() > 0)
                return true;
        }
        if (ended)
            return false;
        ended = true;
        frame = resampler->drain();
        return frame.samples() > 0;
    }
};

ProjectAudio::ProjectAudio(Mixing::Mixer& mixer, std::int64_t count, const AudioFormat& format,
                           const Stop& stop)
    : d(std::make_unique<Private>(mixer, count, format, stop)) {}

ProjectAudio::~ProjectAudio() = default;

AudioFormat ProjectAudio::format() const {
    return d->target;
}

bool ProjectAudio::next(AV::Frame& frame) {
    if (d->stop.requested())
        throw Cancelled();
    if (d->resampler)
        return d->nextConverted(frame);
    return d->nextMixed(frame);
}

void ProjectAudio::finish() {
    d->mixer.finish();
}

} // namespace Velmor::Render
