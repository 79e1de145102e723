#include "platform/projectrender/ProjectLoader.h"

#include "platform/content/ThemeContentProvider.h"
#include "platform/engine/CoreManager.h"
#include "platform/mix/MixingPlugin.h"
#include "platform/project/EditReader.h"
#include "platform/project/EditValidator.h"
#include "platform/project/MediaProber.h"

#include <algorithm>

namespace Velmor::Render {
namespace {

bool readsMedia(const Project::Edit& edit) {
    const bool videoMedia = std::any_of(edit.video.begin(), edit.video.end(), [](const auto& clip) {
        return clip.kind != Project::VideoClip::Kind::Colour;
    });
    const bool overlayMedia =
        std::any_of(edit.overlays.begin(), edit.overlays.end(), [](const auto& track) {
            return std::any_of(track.clips.begin(), track.clips.end(), [](const auto& clip) {
                return clip.kind != Project::OverlayClip::Kind::Text;
            });
        });
    return videoMedia || overlayMedia || !edit.audio.empty();
}

bool drawsEffects(const Project::Edit& edit) {
    const bool transitions = std::any_of(edit.video.begin(), edit.video.end(),
                                         [](const auto& clip) { return clip.transition; });
    const bool titles =
        std::any_of(edit.overlays.begin(), edit.overlays.end(), [](const auto& track) {
            return std::any_of(track.clips.begin(), track.clips.end(), [](const auto& clip) {
                return clip.kind == Project::OverlayClip::Kind::Text;
            });
        });
    return transitions || titles;
}

std::string rateText(AV::Rational rate) {
    return std::to_string(rate.num) + "/" + std::to_string(rate.den);
}

} // namespace

Project::Edit loadProject(const QString& path) {
    const Theme::ContentProvider themes;
    return Project::validateEdit(Project::readEdit(path, themes), Project::FileProber());
}

void requireRenderPlugins(const Project::Edit& edit) {
    const std::string action = "render " + edit.projectFile.toStdString();
    auto& core = Core::CoreManager::Instance();
    if (readsMedia(edit))
        core.RequirePlugin("DecodersFF", action);
    if (drawsEffects(edit))
        core.RequirePlugin("EffectsFF", action);
    Mixing::requireMixing(edit);
}

AV::MediaInfo describeProject(const Project::Edit& edit, std::int64_t bytes) {
    AV::MediaInfo info;
    info.path = edit.projectFile.toStdString();
    info.format = "reelsmith_project";
    info.durationMs = edit.lengthMs;
    info.size = bytes;
    AV::StreamInfo video;
    video.index = 0;
    video.type = "video";
    video.codec = "h264";
    video.width = edit.size.width;
    video.height = edit.size.height;
    video.frameRate = rateText(edit.frameRate);
    video.pixelFormat = "yuv420p";
    video.durationMs = edit.lengthMs;
    AV::StreamInfo audio;
    audio.index = 1;
    audio.type = "audio";
    audio.codec = "aac";
    audio.sampleRate = edit.output.sampleRate;
    audio.channels = 2;
    audio.durationMs = edit.lengthMs;
    info.streams = {video, audio};
    return info;
}

} // namespace Velmor::Render
