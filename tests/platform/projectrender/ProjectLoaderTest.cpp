#include "platform/projectrender/ProjectLoader.h"
#include "platform/engine/PluginError.h"
#include "platform/project/ProjectError.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <fstream>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using EditorService::Testing::RunningEngine;

namespace {

const std::string media = MEDIA_FIXTURES_DIR;

class ProjectLoaderTest : public testing::Test {
protected:
    // Writes a project of the given tracks and loads it.
    Project::Edit load(const std::string& tracks) {
        const std::string path = directory.filePath("edit.json").toStdString();
        std::ofstream(path) << R"({"reelsmith_project": 1, "output": {"frame_rate": "25/1"},
                                   "tracks": [)"
                            << tracks << "]}";
        return Velmor::Render::loadProject(QString::fromStdString(path));
    }

    std::string video(const std::string& clips) {
        return R"({"type": "video", "clips": [)" + clips + "]}";
    }

    QTemporaryDir directory;
};

TEST_F(ProjectLoaderTest, AProjectIsDescribedAsItsExport) {
    const Project::Edit edit =
        load(video(R"({"source": ")" + media + R"(/h264_aac.mp4", "out_ms": 1000},
                      {"color": "#000000", "duration_ms": 600,
                       "transition": {"type": "fade", "duration_ms": 200}})"));
    const Velmor::AV::MediaInfo info = Velmor::Render::describeProject(edit, 321);
    EXPECT_EQ(info.durationMs, 1400);
    EXPECT_EQ(info.size, 321);
    ASSERT_EQ(info.streams.size(), 2u);
    EXPECT_EQ(info.streams[0].type, "video");
    EXPECT_EQ(info.streams[0].width, 320);
    EXPECT_EQ(info.streams[0].height, 240);
    EXPECT_EQ(info.streams[0].frameRate, "25/1");
    EXPECT_EQ(info.streams[1].type, "audio");
    EXPECT_EQ(info.streams[1].sampleRate, 48000);
    EXPECT_EQ(info.streams[1].channels, 2);
}

TEST_F(ProjectLoaderTest, ABadProjectFailsWithItsPlace) {
    EXPECT_THROW(load(video(R"({"source": "missing.mp4"})")), Project::ProjectError);
}

// Each of what EffectsFF draws, alone, needs it; pictures cut together do not.
TEST_F(ProjectLoaderTest, TransitionsTitlesAndTheMixNeedTheEffectsPlugin) {
    const RunningEngine engine({"EffectsFF"});
    const std::string colour = R"({"color": "#000000", "duration_ms": 600})";
    const std::string fade = R"({"color": "#ffffff", "duration_ms": 600,
                                 "transition": {"type": "fade", "duration_ms": 200}})";
    const std::string title =
        R"({"type": "overlay", "clips": [{"text": "Hello", "duration_ms": 200}]})";
    const std::string music =
        R"({"type": "audio", "clips": [{"source": ")" + media + R"(/tone.wav"}]})";
    const std::string disabled = "the plug-in EffectsFF is disabled";
    for (const std::string& tracks : {video(colour + ", " + fade), video(colour) + ", " + title,
                                      video(colour) + ", " + music}) {
        const Project::Edit edit = load(tracks);
        EXPECT_THAT([&] { Velmor::Render::requireRenderPlugins(edit); },
                    FailedWith<Velmor::Core::PluginError>(
                        "Can not render " + edit.projectFile.toStdString() + ": " + disabled))
            << tracks;
    }
    EXPECT_NO_THROW(Velmor::Render::requireRenderPlugins(load(video(colour + ", " + colour))));
}

TEST_F(ProjectLoaderTest, MediaNeedTheDecoders) {
    const RunningEngine engine({"DecodersFF"});
    const Project::Edit edit = load(video(R"({"source": ")" + media + R"(/still.png"})"));
    EXPECT_THAT([&] { Velmor::Render::requireRenderPlugins(edit); },
                FailedWith<Velmor::Core::PluginError>("Can not render "
                                                      + edit.projectFile.toStdString()
                                                      + ": the plug-in DecodersFF is disabled"));
}

} // namespace
