#include "platform/projectrender/ProjectSource.h"

#include "platform/av/MediaError.h"
#include "platform/compositor/Compositor.h"
#include "platform/compositor/FileFrameReaders.h"
#include "platform/mix/Mixer.h"
#include "platform/project/FrameTimes.h"
#include "platform/projectrender/ProjectAudio.h"
#include "platform/projectrender/ProjectVideo.h"
#include "platform/render/Stop.h"

#include <algorithm>

namespace Velmor::Render {
namespace {

// The first sample at or after the start of a frame: where the frame's sound starts, exactly.
std::int64_t sampleOfFrame(std::int64_t frame, AV::Rational rate, int sampleRate) {
    const std::int64_t scaled = frame * rate.den * sampleRate;
    return (scaled + rate.num - 1) / rate.num;
}

} // namespace

class ProjectSource::Private {
public:
    Private(Project::Edit edit, const Stop& stop)
        : stop(stop)
        , compositor(std::move(edit), std::make_shared<Composition::FileFrameReaders>(
                                          [&stop] { return stop.requested(); })) {}

    const Stop& stop;
    Composition::Compositor compositor;
    std::int64_t firstFrame = 0;
    std::int64_t endFrame = 0;
    std::int64_t durationMs = 0;
    std::unique_ptr<ProjectVideo> video;
    std::unique_ptr<Mixing::Mixer> mixer;
    std::unique_ptr<ProjectAudio> audio;

    const Project::Edit& edit() const { return compositor.edit(); }

    void chooseSpan(const std::optional<ClipSettings::Range>& range) {
        const std::int64_t lengthMs = edit().lengthMs;
        endFrame = compositor.frameCount();
        durationMs = lengthMs;
        if (!range)
            return;
        range->requireWithin(edit().projectFile.toStdString(), lengthMs);
        const Project::FrameTimes times(compositor.frameRate());
        firstFrame = times.frameAt(range->from / 1000);
        endFrame = std::min(endFrame, times.frameAt(range->to / 1000));
        durationMs = (range->to - range->from) / 1000;
        if (firstFrame >= endFrame)
            throw AV::MediaError("Can not export " + edit().projectFile.toStdString()
                                 + ": no video frame in the range");
    }
};

ProjectSource::ProjectSource(Project::Edit edit, const std::optional<ClipSettings::Range>& range,
                             const Stop& stop)
    : d(std::make_unique<Private>(std::move(edit), stop)) {
    d->chooseSpan(range);
    d->video = std::make_unique<ProjectVideo>(d->compositor, d->firstFrame, d->endFrame, stop);
}

ProjectSource::~ProjectSource() = default;

std::int64_t ProjectSource::durationMs() const {
    return d->durationMs;
}

VideoSource* ProjectSource::video() {
    return d->video.get();
}

std::optional<AudioFormat> ProjectSource::inputAudio() const {
    return AudioFormat{-1, d->edit().output.sampleRate, 2};
}

AudioSource* ProjectSource::audio(const AudioFormat& format) {
    if (d->audio)
        return d->audio.get();
    const AV::Rational rate = d->compositor.frameRate();
    const int sampleRate = d->edit().output.sampleRate;
    const std::int64_t first = sampleOfFrame(d->firstFrame, rate, sampleRate);
    d->mixer = std::make_unique<Mixing::Mixer>(d->edit(), first);
    const std::int64_t end =
        std::min(d->mixer->sampleCount(), sampleOfFrame(d->endFrame, rate, sampleRate));
    d->audio = std::make_unique<ProjectAudio>(*d->mixer, std::max<std::int64_t>(0, end - first),
                                              format, d->stop);
    return d->audio.get();
}

} // namespace Velmor::Render
