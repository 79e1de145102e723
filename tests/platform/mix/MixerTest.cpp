#include "platform/mix/Mixer.h"
#include "platform/av/AudioBlock.h"
#include "platform/av/MediaError.h"
#include "platform/project/EditValidator.h"
#include "tests/platform/mix/FakeSoundReaders.h"
#include "tests/platform/project/FakeProber.h"
#include "tests/platform/project/ProjectText.h"
#include "tests/support/FailedWith.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Mixing::Mixer;

namespace {

class MixerTest : public testing::Test {
protected:
    Project::Edit edit(const std::string& text) {
        return Project::validateEdit(readText(text), prober);
    }

    // Every block of the mix: its left channel, checking the blocks' times on the way.
    std::vector<float> render(Mixer& mixer, std::int64_t first = 0) {
        std::vector<float> left;
        Velmor::AV::Frame block;
        while (mixer.next(block)) {
            EXPECT_EQ(block.timestamp(), static_cast<std::int64_t>(left.size()));
            EXPECT_EQ(
                Velmor::AV::shapeOf(block),
                (Velmor::AV::AudioShape{Velmor::AV::planarFloat(), mixer.format().sampleRate, 2}));
            const float* values = Velmor::AV::channelOf(block, 0);
            left.insert(left.end(), values, values + block.samples());
        }
        EXPECT_EQ(static_cast<std::int64_t>(left.size()),
                  std::max<std::int64_t>(mixer.sampleCount() - first, 0));
        return left;
    }

    FakeProber prober;
    std::shared_ptr<FakeSoundReaders> readers = std::make_shared<FakeSoundReaders>();
};

// A cut of a clip, a second crossing into it, music that loops under both and ducks under
// them, brought to a loudness.
const std::string busyProject = projectWithTracks(
    R"({"type": "video", "clips": [
         {"source": "a.mp4", "in_ms": 1000, "out_ms": 2500},
         {"source": "speech.mp4", "out_ms": 2000, "volume_db": -2,
          "transition": {"type": "fade", "duration_ms": 700}}]},
       {"type": "audio", "clips": [
         {"source": "music.mp3", "start_ms": 100, "out_ms": 900, "loop": true, "volume_db": -6,
          "fade_in_ms": 300, "fade_out_ms": 500}],
        "duck": {"amount_db": -12, "threshold_db": -30, "attack_ms": 100, "release_ms": 300}})",
    R"("loudness_lufs": -20, )");

TEST_F(MixerTest, TheFormatIsPlanarFloatStereoAtTheProjectsRate) {
    Mixer mixer(
        edit(projectWithClips(R"({"source": "a.mp4"})", R"("output": {"sample_rate": 44100}, )")),
        0, readers);
    EXPECT_EQ(mixer.format().sampleFormat, Velmor::AV::planarFloat());
    EXPECT_EQ(mixer.format().sampleRate, 44100);
    EXPECT_EQ(mixer.format().channels, 2);
}

TEST_F(MixerTest, TheMixLastsTheProjectToTheSampleAndEndsForGood) {
    Mixer mixer(edit(projectWithClips(R"({"source": "a.mp4", "out_ms": 1234})",
                                      R"("output": {"sample_rate": 44100}, )")),
                0, readers);
    EXPECT_EQ(mixer.sampleCount(), 54420);
    render(mixer);
    Velmor::AV::Frame block;
    EXPECT_FALSE(mixer.next(block));
    EXPECT_FALSE(mixer.next(block));
}

TEST_F(MixerTest, ARangeGivesTheSamplesOfTheWholeMixThere) {
    prober.video("speech.mp4", 5000);
    readers->sounds["speech.mp4"] = {[](std::int64_t sample) {
        return static_cast<float>(0.3 * std::sin(sample * 0.05) * (sample / 20000 % 2));
    }};
    readers->sounds["music.mp3"] = {
        [](std::int64_t sample) { return static_cast<float>(0.2 * std::sin(sample * 0.013)); }};
    const Project::Edit project = edit(busyProject);
    Mixer whole(project, 0, readers);
    const std::vector<float> all = render(whole);
    for (const std::int64_t first : {std::int64_t(1), std::int64_t(37123), std::int64_t(100000)}) {
        Mixer range(project, first, readers);
        const std::vector<float> part = render(range, first);
        for (std::size_t index = 0; index < part.size(); ++index)
            ASSERT_EQ(part[index], all[first + index]) << first << " + " << index;
    }
}

TEST_F(MixerTest, AStartAtOrPastTheEndGivesNoBlock) {
    const Project::Edit project = edit(projectWithClips(R"({"source": "a.mp4", "out_ms": 100})"));
    Mixer at(project, 4800, readers);
    Velmor::AV::Frame block;
    EXPECT_FALSE(at.next(block));
    Mixer past(project, 10000, readers);
    EXPECT_FALSE(past.next(block));
}

TEST_F(MixerTest, AStartBeforeTheProjectIsRefused) {
    EXPECT_THAT(
        [&] { Mixer(edit(projectWithClips(R"({"source": "a.mp4"})")), -1, readers); },
        FailedWith<std::invalid_argument>("A mix can not start before the project, at sample -1"));
}

TEST_F(MixerTest, PicturesAndMutedClipsAreSilenceAndOpenNothing) {
    Mixer mixer(
        edit(projectWithClips(
            R"({"source": "photo.jpg", "duration_ms": 500}, {"color": "#102030", "duration_ms": 500},
                       {"source": "a.mp4", "out_ms": 500, "volume_db": null})",
            R"("loudness_lufs": -16, )")),
        0, readers);
    for (const float value : render(mixer))
        ASSERT_EQ(value, 0.0f);
    EXPECT_TRUE(readers->log->opened.empty());
}

TEST_F(MixerTest, TheWholeTimelineIsReadOnceBeforeTheFirstBlockOfAMixThatDucks) {
    prober.video("speech.mp4", 5000);
    readers->sounds["speech.mp4"] = {FakeSoundReaders::indexValue};
    Mixer mixer(edit(busyProject), 0, readers);
    EXPECT_TRUE(readers->log->opened.empty());
    Velmor::AV::Frame block;
    ASSERT_TRUE(mixer.next(block));
    // Both clips and the music's three plays for the analysis, then the first clip for the
    // first block.
    EXPECT_EQ(readers->log->opened.size(), 5u + 1u);
    mixer.finish();
    EXPECT_EQ(readers->log->open, 0);
    EXPECT_FALSE(mixer.next(block));
}

TEST_F(MixerTest, AFailingReadIsTheMixesFailure) {
    readers->sounds.erase("a.mp4");
    const Project::Edit project = edit(projectWithClips(R"({"source": "a.mp4"})"));
    Mixer mixer(project, 0, readers);
    Velmor::AV::Frame block;
    EXPECT_THAT([&] { mixer.next(block); },
                FailedWith<Velmor::AV::MediaError>("Can not open media file: "
                                                   + project.video[0].file.toStdString()
                                                   + ": No such file or directory"));
}

} // namespace
