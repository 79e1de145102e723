#include "platform/projectrender/ProjectSource.h"
#include "platform/av/AudioBlock.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/project/EditReader.h"
#include "platform/project/EditValidator.h"
#include "platform/render/Cancelled.h"
#include "platform/render/Stop.h"
#include "tests/support/FailedWith.h"

#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using Velmor::AV::Frame;
using Velmor::Render::ProjectSource;

namespace {

// Two colours, 1000 + 600 ms at 25 frames a second: 40 frames, 76800 samples at 48000 Hz.
Project::Edit colours() {
    return Project::validateEdit(Project::readEditFrom(R"({"reelsmith_project": 1,
          "output": {"width": 64, "height": 48, "frame_rate": "25/1"},
          "tracks": [{"type": "video", "clips": [
            {"color": "#ff0000", "duration_ms": 1000},
            {"color": "#0000ff", "duration_ms": 600}]}]})",
                                                       "colours.json", Project::NoThemes()),
                                 Project::FileProber());
}

Velmor::Render::ClipSettings::Range milliseconds(std::int64_t from, std::int64_t to) {
    return {from * 1000, to * 1000};
}

std::vector<std::int64_t> timestamps(Velmor::Render::VideoSource& video) {
    std::vector<std::int64_t> times;
    Frame frame;
    while (video.next(frame))
        times.push_back(frame.timestamp());
    return times;
}

// The samples a source gives, checking that each block follows the one before.
std::int64_t samples(Velmor::Render::AudioSource& audio) {
    std::int64_t count = 0;
    Frame block;
    while (audio.next(block)) {
        EXPECT_EQ(block.timestamp(), count);
        count += block.samples();
    }
    return count;
}

class ProjectSourceTest : public testing::Test {
protected:
    Velmor::Render::Stop stop;
};

TEST_F(ProjectSourceTest, TheWholeProjectIsEveryFrameAndEverySample) {
    ProjectSource source(colours(), std::nullopt, stop);
    EXPECT_EQ(source.durationMs(), 1600);
    const Velmor::Render::VideoFormat format = source.video()->format();
    EXPECT_EQ(format.width, 64);
    EXPECT_EQ(format.height, 48);
    EXPECT_EQ(format.timeBase, (Velmor::AV::Rational{1, 25}));
    EXPECT_EQ(timestamps(*source.video()).size(), 40u);
    const Velmor::Render::AudioFormat offered = *source.inputAudio();
    EXPECT_EQ(offered.sampleRate, 48000);
    EXPECT_EQ(offered.channels, 2);
    EXPECT_EQ(samples(*source.audio({Velmor::AV::planarFloat(), 48000, 2})), 76800);
}

// 610 ms falls inside frame 15: the range starts at frame 16 (640 ms, sample 30720) and ends
// before frame 25 (1000 ms, sample 48000).
TEST_F(ProjectSourceTest, ARangeIsTheFramesThatStartInItAndTheirSound) {
    ProjectSource source(colours(), milliseconds(610, 1000), stop);
    EXPECT_EQ(source.durationMs(), 390);
    const std::vector<std::int64_t> times = timestamps(*source.video());
    EXPECT_EQ(times, (std::vector<std::int64_t>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(samples(*source.audio({Velmor::AV::planarFloat(), 48000, 2})), 48000 - 30720);
}

TEST_F(ProjectSourceTest, TheSoundIsConvertedToTheEncodersShape) {
    ProjectSource source(colours(), std::nullopt, stop);
    auto& audio = *source.audio({Velmor::AV::sampleFormat("s16"), 44100, 1});
    EXPECT_EQ(audio.format().sampleRate, 44100);
    Frame block;
    std::int64_t count = 0;
    while (audio.next(block)) {
        EXPECT_EQ(block.format(), Velmor::AV::sampleFormat("s16"));
        count += block.samples();
    }
    // 1.6 s at 44100 Hz, give or take what the resampler rounds.
    EXPECT_NEAR(count, 70560, 2);
}

TEST_F(ProjectSourceTest, ARangeOutsideTheProjectFails) {
    EXPECT_THAT(
        [&] { ProjectSource(colours(), milliseconds(1000, 2000), stop); },
        FailedWith<Velmor::AV::MediaError>("Range 1000:2000 ms is outside colours.json (1600 ms)"));
}

TEST_F(ProjectSourceTest, ARangeWithinOneFrameHasNoFrame) {
    EXPECT_THAT([&] { ProjectSource(colours(), milliseconds(601, 620), stop); },
                FailedWith<Velmor::AV::MediaError>(
                    "Can not export colours.json: no video frame in the range"));
}

TEST_F(ProjectSourceTest, AStoppedRenderGivesUp) {
    ProjectSource source(colours(), std::nullopt, stop);
    stop.request();
    Frame frame;
    EXPECT_THROW(source.video()->next(frame), Velmor::Render::Cancelled);
    EXPECT_THROW(source.audio({Velmor::AV::planarFloat(), 48000, 2})->next(frame),
                 Velmor::Render::Cancelled);
}

} // namespace
