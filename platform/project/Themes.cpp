#include "platform/project/Themes.h"

namespace Project {
namespace {

bool isTrackOf(const nlohmann::json& track, const char* type) {
    return track.is_object() && track.value("type", nlohmann::json()) == type
           && track.contains("clips") && track["clips"].is_array();
}

void fillTransitions(nlohmann::json& clips, const nlohmann::json& transition) {
    for (std::size_t index = 1; index < clips.size(); ++index) {
        if (clips[index].is_object() && !clips[index].contains("transition"))
            clips[index]["transition"] = transition;
    }
}

void fillStyles(nlohmann::json& clips, const nlohmann::json& title) {
    for (auto& clip : clips) {
        if (!clip.is_object() || !clip.contains("text"))
            continue;
        if (!clip.contains("style"))
            clip["style"] = nlohmann::json::object();
        auto& style = clip["style"];
        if (!style.is_object())
            continue;
        for (const auto& [key, value] : title.items()) {
            if (!style.contains(key))
                style[key] = value;
        }
    }
}

} // namespace

IThemes::~IThemes() = default;

void applyTheme(nlohmann::json& document, const ThemeDefaults& theme) {
    if (!document.is_object() || !document.contains("tracks") || !document["tracks"].is_array())
        return;
    for (auto& track : document["tracks"]) {
        if (theme.transition && isTrackOf(track, "video"))
            fillTransitions(track["clips"], *theme.transition);
        if (theme.title && theme.title->is_object() && isTrackOf(track, "overlay"))
            fillStyles(track["clips"], *theme.title);
    }
}

} // namespace Project
