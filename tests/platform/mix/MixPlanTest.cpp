#include "platform/mix/MixPlan.h"
#include "platform/project/EditValidator.h"
#include "tests/platform/project/FakeProber.h"
#include "tests/platform/project/ProjectText.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Mixing::Fade;
using Mixing::MixPlan;

namespace {

class MixPlanTest : public testing::Test {
protected:
    MixPlan planned(const std::string& text) {
        return Mixing::planMix(Project::validateEdit(readText(text), prober));
    }

    FakeProber prober;
};

TEST_F(MixPlanTest, VideoClipsPlayBackToBackAndCrossOverWithEqualPower) {
    const MixPlan plan = planned(projectWithClips(
        R"({"source": "a.mp4", "in_ms": 2000, "out_ms": 4000, "volume_db": -3},
           {"source": "clip.mp4", "out_ms": 3000, "transition": {"type": "fade", "duration_ms": 500}})",
        R"("output": {"sample_rate": 44100}, )"));
    EXPECT_EQ(plan.sampleRate, 44100);
    EXPECT_EQ(plan.samples, 44100 * 4500 / 1000);
    ASSERT_EQ(plan.video.voices.size(), 2u);
    const Mixing::Voice& first = plan.video.voices[0];
    EXPECT_EQ(first.inMs, 2000);
    EXPECT_EQ(first.start, 0);
    EXPECT_EQ(first.end, 88200);
    EXPECT_EQ(first.gainDb, -3);
    EXPECT_FALSE(first.fadeIn);
    const Mixing::Voice& second = plan.video.voices[1];
    EXPECT_EQ(second.start, 66150);
    EXPECT_EQ(second.end, 198450);
    EXPECT_EQ(second.gainDb, 0);
    ASSERT_TRUE(first.fadeOut);
    ASSERT_TRUE(second.fadeIn);
    EXPECT_EQ(first.fadeOut->start, 66150);
    EXPECT_EQ(first.fadeOut->length, 22050);
    EXPECT_EQ(first.fadeOut->curve, Fade::Curve::EqualPower);
    EXPECT_EQ(second.fadeIn->start, first.fadeOut->start);
    EXPECT_EQ(second.fadeIn->length, first.fadeOut->length);
    EXPECT_EQ(second.fadeIn->curve, Fade::Curve::EqualPower);
    EXPECT_FALSE(second.fadeOut);
}

TEST_F(MixPlanTest, PicturesColoursMutedClipsAndFilesWithoutSoundAreSilent) {
    prober.video("silent.mp4", 5000).hasAudio = false;
    const MixPlan plan = planned(projectWithClips(
        R"({"source": "photo.jpg"}, {"color": "#000000"}, {"source": "silent.mp4"},
           {"source": "a.mp4", "out_ms": 1000, "volume_db": null})"));
    EXPECT_TRUE(plan.video.voices.empty());
    EXPECT_FALSE(plan.hasSound());
}

TEST_F(MixPlanTest, AnAudioClipPlaysFromItsStartWithItsFades) {
    const MixPlan plan = planned(projectWithTracks(
        R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
           {"type": "audio", "clips": [{"source": "music.mp3", "start_ms": 500, "in_ms": 1000,
             "out_ms": 3000, "volume_db": -6, "fade_in_ms": 250, "fade_out_ms": 100}]})"));
    ASSERT_EQ(plan.audio.size(), 1u);
    const Mixing::Voice& voice = plan.audio[0].voices.at(0);
    EXPECT_EQ(voice.inMs, 1000);
    EXPECT_EQ(voice.start, 24000);
    EXPECT_EQ(voice.end, 24000 + 96000);
    EXPECT_EQ(voice.period, 0);
    EXPECT_EQ(voice.gainDb, -6);
    ASSERT_TRUE(voice.fadeIn);
    EXPECT_EQ(voice.fadeIn->start, 24000);
    EXPECT_EQ(voice.fadeIn->length, 12000);
    EXPECT_EQ(voice.fadeIn->curve, Fade::Curve::Linear);
    ASSERT_TRUE(voice.fadeOut);
    EXPECT_EQ(voice.fadeOut->start, 120000 - 4800);
    EXPECT_EQ(voice.fadeOut->length, 4800);
    EXPECT_FALSE(plan.audio[0].duck);
    EXPECT_TRUE(plan.hasSound());
}

TEST_F(MixPlanTest, AClipPastTheProjectsEndIsCutThereAndItsFadeOutEndsThere) {
    const MixPlan plan = planned(projectWithTracks(
        R"({"type": "video", "clips": [{"source": "clip.mp4", "out_ms": 2000}]},
           {"type": "audio", "clips": [{"source": "music.mp3", "start_ms": 1000, "fade_out_ms": 500}]})"));
    const Mixing::Voice& voice = plan.audio[0].voices.at(0);
    EXPECT_EQ(voice.start, 48000);
    EXPECT_EQ(voice.end, 96000);
    ASSERT_TRUE(voice.fadeOut);
    EXPECT_EQ(voice.fadeOut->start, 96000 - 24000);
    EXPECT_EQ(voice.fadeOut->length, 24000);
}

TEST_F(MixPlanTest, ALoopPlaysToTheProjectsEndAgainEveryPlay) {
    const MixPlan plan = planned(projectWithTracks(
        R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
           {"type": "audio", "clips": [{"source": "music.mp3", "in_ms": 1000, "out_ms": 1500,
             "loop": true}],
            "duck": {"amount_db": -9}})"));
    const Mixing::Voice& voice = plan.audio[0].voices.at(0);
    EXPECT_EQ(voice.period, 24000);
    EXPECT_EQ(voice.end, 480000);
    EXPECT_FALSE(voice.fadeIn);
    EXPECT_FALSE(voice.fadeOut);
    ASSERT_TRUE(plan.audio[0].duck);
    EXPECT_EQ(plan.audio[0].duck->amountDb, -9);
}

TEST_F(MixPlanTest, FadesLongerThanTheClipAreCutToIt) {
    const MixPlan plan = planned(projectWithTracks(
        R"({"type": "video", "clips": [{"source": "clip.mp4", "out_ms": 1000}]},
           {"type": "audio", "clips": [{"source": "music.mp3", "start_ms": 500, "fade_in_ms": 2000,
             "fade_out_ms": 3000}]})"));
    const Mixing::Voice& voice = plan.audio[0].voices.at(0);
    EXPECT_EQ(voice.fadeIn->length, 24000);
    EXPECT_EQ(voice.fadeOut->start, 24000);
    EXPECT_EQ(voice.fadeOut->length, 24000);
}

TEST_F(MixPlanTest, TheLoudnessIsKept) {
    const MixPlan plan =
        planned(projectWithClips(R"({"source": "a.mp4"})", R"("loudness_lufs": -16, )"));
    EXPECT_EQ(plan.loudnessLufs, -16);
}

} // namespace
