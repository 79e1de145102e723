#include "platform/project/EditValidator.h"

#include "platform/project/ProjectError.h"

#include <map>

namespace Project {
namespace {

std::string ms(std::int64_t milliseconds) {
    return std::to_string(milliseconds) + " ms";
}

// Probes each file once and says where a failure belongs.
class Facts {
public:
    Facts(const IMediaProber& prober, std::string project)
        : prober(prober)
        , project(std::move(project)) {}

    [[noreturn]] void fail(const std::string& place, const std::string& reason) const {
        throw ProjectError(project + ": " + place + ": " + reason);
    }

    const MediaFacts& of(const QString& file, const QString& source, const std::string& place) {
        const auto known = probed.find(file);
        if (known != probed.end())
            return known->second;
        try {
            return probed.emplace(file, prober.probe(file)).first->second;
        } catch (const std::exception& error) {
            // The project names its media relative to its folder; so do its messages.
            std::string reason = error.what();
            const std::string resolved = file.toStdString();
            for (std::size_t at = reason.find(resolved); at != std::string::npos;
                 at = reason.find(resolved, at + source.size()))
                reason.replace(at, resolved.size(), source.toStdString());
            fail(place + ".source", reason);
        }
    }

    // The part of a media file from in_ms to out_ms, checked against its length.
    std::int64_t cutLength(const std::string& place, const QString& source, const MediaFacts& facts,
                           std::int64_t inMs, std::optional<std::int64_t> outMs) const {
        const std::string name = source.toStdString();
        const std::int64_t end = facts.durationMs;
        if (end > 0 && inMs >= end)
            fail(place + ".in_ms", ms(inMs) + " is past the end of " + name + " (" + ms(end) + ")");
        if (!outMs && end <= 0)
            fail(place + ".out_ms", name + " does not tell its length; give out_ms");
        const std::int64_t out = outMs.value_or(end);
        if (end > 0 && out > end)
            fail(place + ".out_ms", ms(out) + " is past the end of " + name + " (" + ms(end) + ")");
        if (out <= inMs)
            fail(place + ".out_ms", ms(out) + " is not after in_ms (" + ms(inMs) + ")");
        return out - inMs;
    }

    const IMediaProber& prober;
    const std::string project;
    std::map<QString, MediaFacts> probed;
};

constexpr std::int64_t defaultStillMs = 4000;

void settleVideoClip(VideoClip& clip, Facts& facts) {
    if (clip.kind == VideoClip::Kind::Colour) {
        clip.lengthMs = clip.durationMs.value_or(defaultStillMs);
        return;
    }
    const MediaFacts& media = facts.of(clip.file, clip.source, clip.path);
    const std::string name = clip.source.toStdString();
    if (!media.hasVideo)
        facts.fail(clip.path + ".source", "No video stream in " + name);
    clip.hasAudio = media.hasAudio;
    if (media.isStill) {
        if (clip.inMs != 0 || clip.outMs)
            facts.fail(clip.path + (clip.outMs ? ".out_ms" : ".in_ms"),
                       name + " is a still picture; give duration_ms");
        clip.kind = VideoClip::Kind::Still;
        clip.lengthMs = clip.durationMs.value_or(defaultStillMs);
        return;
    }
    if (clip.durationMs)
        facts.fail(clip.path + ".duration_ms", name + " is a video; cut it with in_ms and out_ms");
    clip.lengthMs = facts.cutLength(clip.path, clip.source, media, clip.inMs, clip.outMs);
}

// Places the clips one after another, each transition overlapping the clip before it.
std::int64_t placeVideoClips(std::vector<VideoClip>& clips, const Facts& facts) {
    std::int64_t end = 0;
    std::int64_t previousOverlap = 0;
    for (std::size_t index = 0; index < clips.size(); ++index) {
        VideoClip& clip = clips[index];
        const std::int64_t overlap = clip.transition ? clip.transition->durationMs : 0;
        if (clip.transition && index == 0)
            facts.fail(clip.transition->path, "the first clip has no clip before it");
        if (clip.transition) {
            const std::string& place = clip.transition->path;
            const std::int64_t before = clips[index - 1].lengthMs;
            if (overlap > before)
                facts.fail(place,
                           ms(overlap) + " is longer than the clip before it (" + ms(before) + ")");
            if (overlap > clip.lengthMs)
                facts.fail(place, ms(overlap) + " is longer than its own clip (" + ms(clip.lengthMs)
                                      + ")");
            if (overlap + previousOverlap > before)
                facts.fail(place, ms(overlap) + " and the transition into the clip before it ("
                                      + ms(previousOverlap) + ") are longer than that clip ("
                                      + ms(before) + ")");
        }
        clip.startMs = end - overlap;
        end = clip.startMs + clip.lengthMs;
        previousOverlap = overlap;
    }
    return end;
}

void settleOverlayClip(OverlayClip& clip, std::int64_t projectMs, Facts& facts) {
    if (clip.startMs >= projectMs)
        facts.fail(clip.path + ".start_ms",
                   ms(clip.startMs) + " is past the end of the project (" + ms(projectMs) + ")");
    const std::int64_t untilEnd = projectMs - clip.startMs;
    std::int64_t length = clip.durationMs.value_or(untilEnd);
    if (clip.kind != OverlayClip::Kind::Text) {
        const MediaFacts& media = facts.of(clip.file, clip.source, clip.path);
        const std::string name = clip.source.toStdString();
        if (!media.hasVideo)
            facts.fail(clip.path + ".source", "No video stream in " + name);
        if (media.isStill && clip.inMs != 0)
            facts.fail(clip.path + ".in_ms", name + " is a still picture; it has no in_ms");
        if (!media.isStill) {
            clip.kind = OverlayClip::Kind::Video;
            const std::int64_t available =
                facts.cutLength(clip.path, clip.source, media, clip.inMs, std::nullopt);
            if (clip.durationMs && *clip.durationMs > available)
                facts.fail(clip.path + ".duration_ms", ms(*clip.durationMs) + " from in_ms ("
                                                           + ms(clip.inMs) + ") is past the end of "
                                                           + name + " (" + ms(media.durationMs)
                                                           + ")");
            length = clip.durationMs.value_or(available);
        }
    }
    clip.lengthMs = std::min(length, untilEnd);
}

void settleAudioClip(AudioClip& clip, std::int64_t projectMs, Facts& facts) {
    const MediaFacts& media = facts.of(clip.file, clip.source, clip.path);
    if (!media.hasAudio)
        facts.fail(clip.path + ".source", "No audio stream in " + clip.source.toStdString());
    clip.lengthMs = facts.cutLength(clip.path, clip.source, media, clip.inMs, clip.outMs);
    if (clip.startMs >= projectMs)
        facts.fail(clip.path + ".start_ms",
                   ms(clip.startMs) + " is past the end of the project (" + ms(projectMs) + ")");
}

void settleOutput(Edit& edit, Facts& facts) {
    edit.size = {1280, 720};
    edit.frameRate = {25, 1};
    bool sized = false;
    bool timed = false;
    for (const VideoClip& clip : edit.video) {
        if (clip.kind == VideoClip::Kind::Colour)
            continue;
        const MediaFacts& media = facts.of(clip.file, clip.source, clip.path);
        if (!sized && media.width > 0 && media.height > 0) {
            edit.size = {media.width, media.height};
            sized = true;
        }
        if (!timed && clip.kind == VideoClip::Kind::Media && media.frameRate.num > 0
            && media.frameRate.den > 0) {
            edit.frameRate = media.frameRate;
            timed = true;
        }
    }
    if (edit.output.width)
        edit.size = {*edit.output.width, *edit.output.height};
    if (edit.output.frameRate)
        edit.frameRate = *edit.output.frameRate;
}

} // namespace

Edit validateEdit(Edit edit, const IMediaProber& prober) {
    Facts facts(prober, edit.projectFile.toStdString());
    for (VideoClip& clip : edit.video)
        settleVideoClip(clip, facts);
    edit.lengthMs = placeVideoClips(edit.video, facts);
    settleOutput(edit, facts);
    for (OverlayTrack& track : edit.overlays)
        for (OverlayClip& clip : track.clips)
            settleOverlayClip(clip, edit.lengthMs, facts);
    for (AudioTrack& track : edit.audio)
        for (AudioClip& clip : track.clips)
            settleAudioClip(clip, edit.lengthMs, facts);
    return edit;
}

} // namespace Project
