// Reads arbitrary bytes as a project file and validates what reads against media known by name
// (no files are opened). Only a ProjectError whose message starts with the project's name may
// come out; a validated edit must keep the project's timing. Anything else aborts.

#include "platform/project/EditReader.h"
#include "platform/project/EditValidator.h"
#include "platform/project/FrameTimes.h"
#include "platform/project/ProjectError.h"

#include <QFileInfo>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <typeinfo>

namespace {

[[noreturn]] void fail(const char* what, const std::string& detail) {
    std::fprintf(stderr, "%s: %s\n", what, detail.c_str());
    std::abort();
}

class NamedMedia : public Project::IMediaProber {
public:
    Project::MediaFacts probe(const QString& file) const override {
        const QString name = QFileInfo(file).fileName();
        Project::MediaFacts facts;
        facts.hasVideo = name.endsWith(".mp4") || name.endsWith(".png");
        facts.hasAudio = name.endsWith(".mp4") || name.endsWith(".mp3");
        facts.isStill = name.endsWith(".png");
        facts.durationMs = facts.isStill ? 40 : 10000;
        facts.width = 320;
        facts.height = 240;
        facts.frameRate = {25, 1};
        if (name.startsWith("missing"))
            throw std::runtime_error("Can not open media file: " + file.toStdString()
                                     + ": No such file or directory");
        return facts;
    }
};

class OneTheme : public Project::IThemes {
public:
    std::vector<std::string> themeNames() const override { return {"Classic"}; }
    std::optional<Project::ThemeDefaults> theme(const std::string& name) const override {
        if (name != "Classic")
            return std::nullopt;
        return Project::ThemeDefaults{"Classic",
                                      nlohmann::json{{"type", "fade"}, {"duration_ms", 300}},
                                      nlohmann::json{{"position", "top-left"}}};
    }
};

void checkTiming(const Project::Edit& edit) {
    std::int64_t sum = 0;
    for (const Project::VideoClip& clip : edit.video) {
        if (clip.lengthMs <= 0 || clip.startMs < 0)
            fail("clip out of place", clip.path);
        sum += clip.lengthMs - (clip.transition ? clip.transition->durationMs : 0);
    }
    if (sum != edit.lengthMs)
        fail("length is not the clips less the transitions", std::to_string(edit.lengthMs));
    const Project::FrameTimes times(edit.frameRate);
    if (times.frameAt(edit.lengthMs) <= 0)
        fail("a project without frames", std::to_string(edit.lengthMs));
    for (const auto& track : edit.overlays)
        for (const auto& clip : track.clips)
            if (clip.lengthMs <= 0 || clip.startMs + clip.lengthMs > edit.lengthMs)
                fail("overlay out of place", clip.path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const QString path = QStringLiteral("fuzz/edit.json");
    try {
        checkTiming(
            Project::validateEdit(Project::readEditFrom(bytes, path, OneTheme()), NamedMedia()));
    } catch (const Project::ProjectError& error) {
        if (typeid(error) != typeid(Project::ProjectError)
            || std::string(error.what()).rfind("fuzz/edit.json: ", 0) != 0)
            fail("project error without the project's name", error.what());
    } catch (const std::exception& error) {
        fail(typeid(error).name(), error.what());
    } catch (...) {
        fail("non-standard exception", "");
    }
    return 0;
}
