#include "platform/mix/MixingPlugin.h"
#include "platform/engine/PluginError.h"
#include "platform/project/EditValidator.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/platform/project/FakeProber.h"
#include "tests/platform/project/ProjectText.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace EditorService::Testing;

namespace {

struct NeedRow {
    const char* name;
    std::string tracks;
    bool needs;
};

class MixingPluginTest : public testing::Test {
protected:
    Project::Edit edit(const std::string& tracks) {
        prober.video("silent.mp4", 3000).hasAudio = false;
        return Project::validateEdit(readText(projectWithTracks(tracks)), prober);
    }

    FakeProber prober;
};

const char* const soundingClip = R"({"type": "video", "clips": [{"source": "a.mp4"}]})";
const char* const pictures =
    R"({"type": "video", "clips": [{"source": "photo.jpg"}, {"color": "#000000"}]})";

class NeedsMixingTest : public MixingPluginTest, public testing::WithParamInterface<NeedRow> {};

TEST_P(NeedsMixingTest, AnEditNeedsTheMixWhenItHasSoundToMix) {
    EXPECT_EQ(Mixing::needsMixing(edit(GetParam().tracks)), GetParam().needs);
}

INSTANTIATE_TEST_SUITE_P(
    Edits, NeedsMixingTest,
    testing::Values(
        NeedRow{"AClipWithSound", soundingClip, true},
        NeedRow{"PicturesAndColours", pictures, false},
        NeedRow{"AMutedClip",
                R"({"type": "video", "clips": [{"source": "a.mp4", "volume_db": null}]})", false},
        NeedRow{"AFileWithoutSound", R"({"type": "video", "clips": [{"source": "silent.mp4"}]})",
                false},
        NeedRow{"MusicUnderPictures",
                std::string(pictures)
                    + R"(, {"type": "audio", "clips": [{"source": "music.mp3"}]})",
                true}),
    [](const testing::TestParamInfo<NeedRow>& row) { return row.param.name; });

TEST_F(MixingPluginTest, AMixWithTheEffectsPluginDisabledCanNotRender) {
    const RunningEngine engine({"EffectsFF"});
    EXPECT_THAT([&] { Mixing::requireMixing(edit(soundingClip)); },
                FailedWith<Velmor::Core::PluginError>(
                    "Can not render projects/edit.json: the plug-in EffectsFF is disabled"));
    EXPECT_NO_THROW(Mixing::requireMixing(edit(pictures)));
}

TEST_F(MixingPluginTest, AMixWithTheEffectsPluginLoadedRenders) {
    const RunningEngine engine({"EffectsOgl"});
    EXPECT_NO_THROW(Mixing::requireMixing(edit(soundingClip)));
}

TEST_F(MixingPluginTest, AMixNeedsARunningEngine) {
    EXPECT_THAT([&] { Mixing::requireMixing(edit(soundingClip)); },
                FailedWith<std::logic_error>(
                    "Can not render projects/edit.json: the engine is not running"));
}

} // namespace
