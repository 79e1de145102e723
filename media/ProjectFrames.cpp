#include "media/ProjectFrames.h"

#include "platform/project/Edit.h"
#include "platform/project/FrameTimes.h"

namespace EditorService {

ProjectFrames::ProjectFrames(const Project::Edit& edit) {
    const Project::FrameTimes frames(edit.frameRate);
    const std::int64_t count = frames.frameAt(edit.lengthMs);
    const auto& rate = edit.frameRate;
    for (std::int64_t frame = 0; frame < count; ++frame)
        times.push_back(frame * 1000000 * rate.den / rate.num);
    lengthUs = edit.lengthMs * 1000;
    const auto keep = [&](std::int64_t fromMs, std::int64_t toMs) {
        if (toMs > fromMs)
            unbroken.emplace_back(frames.frameAt(fromMs), frames.frameAt(toMs));
    };
    for (const Project::VideoClip& clip : edit.video) {
        if (clip.transition)
            keep(clip.startMs, clip.startMs + clip.transition->durationMs);
    }
    for (const Project::OverlayTrack& track : edit.overlays) {
        for (const Project::OverlayClip& title : track.clips) {
            if (title.kind != Project::OverlayClip::Kind::Text)
                continue;
            keep(title.startMs, title.startMs + title.fadeInMs);
            const std::int64_t endMs = title.startMs + title.lengthMs;
            keep(endMs - title.fadeOutMs, endMs);
        }
    }
}

} // namespace EditorService
