#include "platform/mix/MixPlan.h"

#include "platform/mix/SampleTimes.h"

#include <algorithm>

namespace Mixing {
namespace {

// The equal-power crossfade of a transition that starts at `startMs`: the clip before falls
// as the next one rises, over the same samples.
Fade transitionFade(const SampleTimes& times, std::int64_t startMs, std::int64_t lengthMs) {
    const std::int64_t start = times.sampleAt(startMs);
    return {start, times.sampleAt(startMs + lengthMs) - start, Fade::Curve::EqualPower};
}

std::optional<Voice> videoVoice(const Project::Edit& edit, std::size_t index,
                                const SampleTimes& times) {
    const Project::VideoClip& clip = edit.video[index];
    if (clip.kind != Project::VideoClip::Kind::Media || !clip.hasAudio || !clip.volumeDb)
        return std::nullopt;
    Voice voice;
    voice.file = clip.file;
    voice.inMs = clip.inMs;
    voice.start = times.sampleAt(clip.startMs);
    voice.end = times.sampleAt(clip.startMs + clip.lengthMs);
    voice.gainDb = *clip.volumeDb;
    if (clip.transition)
        voice.fadeIn = transitionFade(times, clip.startMs, clip.transition->durationMs);
    if (index + 1 < edit.video.size() && edit.video[index + 1].transition) {
        const Project::VideoClip& after = edit.video[index + 1];
        voice.fadeOut = transitionFade(times, after.startMs, after.transition->durationMs);
    }
    return voice;
}

std::optional<Fade> linearFade(std::int64_t start, std::int64_t length) {
    if (length <= 0)
        return std::nullopt;
    return Fade{start, length, Fade::Curve::Linear};
}

Voice audioVoice(const Project::AudioClip& clip, std::int64_t projectEnd,
                 const SampleTimes& times) {
    Voice voice;
    voice.file = clip.file;
    voice.inMs = clip.inMs;
    voice.start = times.sampleAt(clip.startMs);
    const std::int64_t play = times.sampleAt(clip.inMs + clip.lengthMs) - times.sampleAt(clip.inMs);
    voice.period = clip.loop ? play : 0;
    voice.end = clip.loop ? projectEnd : std::min(voice.start + play, projectEnd);
    voice.gainDb = clip.volumeDb;
    const std::int64_t length = voice.end - voice.start;
    voice.fadeIn = linearFade(voice.start, std::min(times.sampleAt(clip.fadeInMs), length));
    const std::int64_t fadeOut = std::min(times.sampleAt(clip.fadeOutMs), length);
    voice.fadeOut = linearFade(voice.end - fadeOut, fadeOut);
    return voice;
}

} // namespace

bool MixPlan::hasSound() const {
    if (!video.voices.empty())
        return true;
    return std::any_of(audio.begin(), audio.end(),
                       [](const TrackPlan& track) { return !track.voices.empty(); });
}

MixPlan planMix(const Project::Edit& edit) {
    const SampleTimes times(edit.output.sampleRate);
    MixPlan plan;
    plan.sampleRate = edit.output.sampleRate;
    plan.samples = times.sampleAt(edit.lengthMs);
    plan.loudnessLufs = edit.loudnessLufs;
    for (std::size_t index = 0; index < edit.video.size(); ++index) {
        if (auto voice = videoVoice(edit, index, times))
            plan.video.voices.push_back(std::move(*voice));
    }
    for (const Project::AudioTrack& track : edit.audio) {
        TrackPlan planned{{}, track.duck};
        for (const Project::AudioClip& clip : track.clips)
            planned.voices.push_back(audioVoice(clip, plan.samples, times));
        plan.audio.push_back(std::move(planned));
    }
    return plan;
}

} // namespace Mixing
