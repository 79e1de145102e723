#include "platform/mix/MixAnalysis.h"
#include "platform/project/EditValidator.h"
#include "tests/platform/mix/FakeSoundReaders.h"
#include "tests/platform/project/FakeProber.h"
#include "tests/platform/project/ProjectText.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Mixing::MixAnalysis;

namespace {

class MixAnalysisTest : public testing::Test {
protected:
    MixAnalysis analysed(const std::string& text) {
        return Mixing::analyseMix(Mixing::planMix(Project::validateEdit(readText(text), prober)),
                                  readers);
    }

    FakeProber prober;
    FakeSoundReaders readers;
};

const std::string musicUnderAClip =
    R"({"type": "video", "clips": [{"source": "a.mp4", "out_ms": 2000%1}]},
    {"type": "audio", "clips": [{"source": "music.mp3"}]%2})";

std::string tracks(const std::string& clip, const std::string& music) {
    std::string text = musicUnderAClip;
    text.replace(text.find("%1"), 2, clip);
    text.replace(text.find("%2"), 2, music);
    return projectWithTracks(text);
}

TEST_F(MixAnalysisTest, AMixThatNeitherDucksNorHasALoudnessReadsNothing) {
    const MixAnalysis analysis = analysed(tracks("", ""));
    EXPECT_TRUE(readers.log->opened.empty());
    ASSERT_EQ(analysis.ducks.size(), 1u);
    EXPECT_TRUE(analysis.ducks[0].empty());
    EXPECT_TRUE(analysis.master.empty());
    EXPECT_FALSE(analysis.measuredLufs);
}

TEST_F(MixAnalysisTest, ADuckReadsTheVideoTrackAlone) {
    const MixAnalysis analysis = analysed(tracks("", R"(, "duck": {"amount_db": -6})"));
    ASSERT_EQ(readers.log->opened.size(), 1u);
    EXPECT_EQ(readers.log->opened[0].first, "a.mp4");
    // A gain at the start and at the end of each hundredth of a second of the 2 s.
    EXPECT_EQ(analysis.ducks[0].size(), 201u);
    EXPECT_EQ(analysis.ducks[0].hop(), 480);
}

TEST_F(MixAnalysisTest, NothingDucksUnderAMutedVideoTrack) {
    const MixAnalysis analysis =
        analysed(tracks(R"(, "volume_db": null)", R"(, "duck": {"amount_db": -6})"));
    EXPECT_TRUE(readers.log->opened.empty());
    EXPECT_TRUE(analysis.ducks[0].empty());
}

TEST_F(MixAnalysisTest, TheLoudnessIsMeasuredAndTheGainBringsTheMixToIt) {
    readers.sounds["a.mp4"] = {[](std::int64_t sample) {
        return static_cast<float>(0.1 * std::sin(2 * M_PI * 997 * sample / 48000.0));
    }};
    readers.sounds["music.mp3"] = {[](std::int64_t) { return 0.0f; }};
    std::string text = tracks("", "");
    text.insert(text.find("\"tracks\""), R"("loudness_lufs": -23, )");
    const MixAnalysis analysis = analysed(text);
    ASSERT_TRUE(analysis.measuredLufs);
    // The sine is on the left, its negative on the right.
    EXPECT_NEAR(*analysis.measuredLufs, -20, 0.1);
    EXPECT_NEAR(analysis.gainDb, -23 - *analysis.measuredLufs, 1e-9);
    EXPECT_NEAR(20 * std::log10(analysis.master.value(50)), analysis.gainDb, 1e-4);
}

TEST_F(MixAnalysisTest, AMixTooQuietToMeasureKeepsItsLevel) {
    readers.sounds["a.mp4"] = {[](std::int64_t) { return 0.0f; }};
    readers.sounds["music.mp3"] = {[](std::int64_t) { return 0.0f; }};
    std::string text = tracks("", "");
    text.insert(text.find("\"tracks\""), R"("loudness_lufs": -23, )");
    const MixAnalysis analysis = analysed(text);
    EXPECT_FALSE(analysis.measuredLufs);
    EXPECT_TRUE(analysis.master.empty());
}

} // namespace
