#include "platform/mix/Mixer.h"
#include "platform/mix/SampleTimes.h"
#include "platform/project/EditReader.h"
#include "platform/project/EditValidator.h"
#include "tests/platform/mix/MixFiles.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Mixing::Mixer;

namespace {

// A project of the fixtures: "MEDIA/" in its text names their folder.
std::string project(std::string text) {
    for (std::size_t at = text.find("MEDIA/"); at != std::string::npos; at = text.find("MEDIA/"))
        text.replace(at, 6, std::string(MEDIA_FIXTURES_DIR) + "/");
    return text;
}

Project::Edit edit(const std::string& text) {
    return Project::validateEdit(
        Project::readEditFrom(project(text), "mix.json", Project::NoThemes()),
        Project::FileProber());
}

// The power of [from, from + count) of one channel of interleaved stereo samples, in dB.
double levelDb(const std::vector<float>& samples, int channel, double fromSeconds, double seconds) {
    const std::size_t from = static_cast<std::size_t>(fromSeconds * 48000);
    const std::size_t count = static_cast<std::size_t>(seconds * 48000);
    double power = 0;
    for (std::size_t index = from; index < from + count; ++index)
        power += samples[2 * index + channel] * samples[2 * index + channel];
    return 10 * std::log10(power / count);
}

float left(const std::vector<float>& samples, double seconds) {
    return samples[2 * static_cast<std::size_t>(std::llround(seconds * 48000))];
}

class MixerMediaTest : public testing::Test {
protected:
    // The mix of the project written to a WAV file and decoded by ffmpeg.
    std::vector<float> mixed(const std::string& text) {
        Mixer mixer(edit(text));
        writeWav(mixer, wav());
        return decodedSamples(wav());
    }

    std::string wav() const { return directory.filePath("mix.wav").toStdString(); }

    // ffmpeg's measure of the mix of a sound fixture brought to a loudness.
    Loudness normalised(const std::string& sound, int lufs) {
        mixed(R"({"reelsmith_project": 1, "loudness_lufs": )" + std::to_string(lufs) + R"(,
            "tracks": [{"type": "video", "clips": [{"color": "#000000", "duration_ms": 3000}]},
                       {"type": "audio", "clips": [{"source": "MEDIA/)"
              + sound + R"("}]}]})");
        return measuredLoudness(wav());
    }

    QTemporaryDir directory;
};

TEST_F(MixerMediaTest, TheMixLastsTheProjectToTheSample) {
    const std::vector<float> samples = mixed(R"({"reelsmith_project": 1,
        "output": {"sample_rate": 44100},
        "tracks": [{"type": "video", "clips": [
          {"source": "MEDIA/left_tone.mov", "out_ms": 1234},
          {"color": "#000000", "duration_ms": 777, "transition": {"type": "fade", "duration_ms": 300}}]}]})");
    EXPECT_EQ(samples.size(), 2u * Mixing::SampleTimes(44100).sampleAt(1234 + 777 - 300));
    const ToolOutput probed =
        runTool("ffprobe", {"-v", "error", "-show_entries", "stream=sample_rate,channels", "-of",
                            "csv=p=0", QString::fromStdString(wav())});
    EXPECT_EQ(probed.output.trimmed(), "44100,2");
}

TEST_F(MixerMediaTest, FadesRiseAndFallInStraightLines) {
    const std::vector<float> samples = mixed(R"({"reelsmith_project": 1, "tracks": [
        {"type": "video", "clips": [{"color": "#000000", "duration_ms": 3000}]},
        {"type": "audio", "clips": [{"source": "MEDIA/level.wav", "fade_in_ms": 1000,
                                     "fade_out_ms": 500}]}]})");
    EXPECT_EQ(left(samples, 0), 0.0f);
    EXPECT_NEAR(left(samples, 0.25), 0.125, 1e-4);
    EXPECT_NEAR(left(samples, 0.5), 0.25, 1e-4);
    EXPECT_NEAR(left(samples, 1.0), 0.5, 1e-4);
    EXPECT_NEAR(left(samples, 2.5), 0.5, 1e-4);
    EXPECT_NEAR(left(samples, 2.75), 0.25, 1e-4);
    EXPECT_NEAR(samples[samples.size() - 2], 0.5 / 24000, 1e-6);
}

TEST_F(MixerMediaTest, ATransitionCrossesOverWithEqualPower) {
    const std::vector<float> samples = mixed(R"({"reelsmith_project": 1, "tracks": [
        {"type": "video", "clips": [
          {"source": "MEDIA/left_tone.mov"},
          {"source": "MEDIA/right_tone.mov", "transition": {"type": "dissolve", "duration_ms": 1000}}]}]})");
    // The outgoing voice is on the left, the incoming on the right; 20 ms hold whole periods
    // of both tones.
    const double full = levelDb(samples, 0, 0.2, 0.02);
    EXPECT_NEAR(full, 20 * std::log10(0.25 / std::sqrt(2.0)), 0.05);
    for (double at = 0.9; at < 2.1; at += 0.02) {
        const double left = std::pow(10, levelDb(samples, 0, at, 0.02) / 10);
        const double right = std::pow(10, levelDb(samples, 1, at, 0.02) / 10);
        EXPECT_NEAR(10 * std::log10(left + right), full, 0.1) << at;
    }
    EXPECT_NEAR(levelDb(samples, 0, 1.49, 0.02), full - 3, 0.2);
    EXPECT_NEAR(levelDb(samples, 1, 1.49, 0.02), full - 3, 0.2);
    EXPECT_LT(levelDb(samples, 0, 2.2, 0.02), -90);
}

TEST_F(MixerMediaTest, ALoopStartsItsClipAgain) {
    const std::vector<float> samples = mixed(R"({"reelsmith_project": 1, "tracks": [
        {"type": "video", "clips": [{"color": "#000000", "duration_ms": 2500}]},
        {"type": "audio", "clips": [{"source": "MEDIA/ramp.wav", "loop": true}]}]})");
    ASSERT_EQ(samples.size(), 2u * 120000);
    EXPECT_EQ(samples[0], 0.0f);
    EXPECT_GT(samples[2 * 47999], 0.99f);
    for (std::size_t index = 0; index < 72000; ++index)
        ASSERT_EQ(samples[2 * (48000 + index)], samples[2 * (index % 48000)]) << index;
}

TEST_F(MixerMediaTest, AClipPastTheEndIsCutThereAndItsFadeOutEndsThere) {
    const std::vector<float> samples = mixed(R"({"reelsmith_project": 1, "tracks": [
        {"type": "video", "clips": [{"color": "#000000", "duration_ms": 2500}]},
        {"type": "audio", "clips": [{"source": "MEDIA/level.wav", "start_ms": 1000,
                                     "fade_out_ms": 1000}]}]})");
    ASSERT_EQ(samples.size(), 2u * 120000);
    EXPECT_EQ(left(samples, 0.999), 0.0f);
    EXPECT_NEAR(left(samples, 1.2), 0.5, 1e-4);
    EXPECT_NEAR(left(samples, 1.5), 0.5, 1e-4);
    EXPECT_NEAR(left(samples, 2.0), 0.25, 1e-4);
    EXPECT_NEAR(samples[samples.size() - 2], 0.5 / 48000, 1e-6);
}

TEST_F(MixerMediaTest, MusicDucksUnderTheVoiceByItsAmountWithItsAttackAndRelease) {
    // The voice is on the right from 1 s to 2.5 s, the music on the left.
    const std::vector<float> samples = mixed(R"({"reelsmith_project": 1, "tracks": [
        {"type": "video", "clips": [{"source": "MEDIA/speech.mov"}]},
        {"type": "audio", "clips": [{"source": "MEDIA/music.wav", "loop": true}],
         "duck": {"amount_db": -12, "threshold_db": -30, "attack_ms": 200, "release_ms": 800}}]})");
    const double unducked = levelDb(samples, 0, 0.5, 0.4);
    const double ducked = levelDb(samples, 0, 1.5, 0.8);
    EXPECT_NEAR(unducked, 20 * std::log10(0.25 / std::sqrt(2.0)), 0.05);
    EXPECT_NEAR(ducked - unducked, -12, 0.5);
    // Half way through the attack and the release (which starts once the level's window has
    // let the voice go), half the amount.
    EXPECT_NEAR(levelDb(samples, 0, 1.09, 0.04) - unducked, -6, 0.75);
    EXPECT_NEAR(levelDb(samples, 0, 2.93, 0.04) - unducked, -6, 0.75);
    EXPECT_NEAR(levelDb(samples, 0, 3.5, 0.4) - unducked, 0, 0.1);
}

TEST_F(MixerMediaTest, TheMixIsBroughtToItsLoudness) {
    const Loudness loudness = normalised("noise.wav", -16);
    EXPECT_NEAR(loudness.integrated, -16, 1);
    EXPECT_LE(loudness.truePeak, -1);
}

TEST_F(MixerMediaTest, PeaksThatTheLoudnessRaisesAreLimited) {
    const Loudness loudness = normalised("clicks.wav", -12);
    EXPECT_NEAR(loudness.integrated, -12, 1);
    EXPECT_LE(loudness.truePeak, -1);
}

TEST_F(MixerMediaTest, PicturesAndFilesWithoutSoundAreSilent) {
    const std::vector<float> samples = mixed(R"({"reelsmith_project": 1, "tracks": [
        {"type": "video", "clips": [{"source": "MEDIA/still.png", "duration_ms": 500},
          {"color": "#102030", "duration_ms": 500}, {"source": "MEDIA/noaudio.mp4"}]}]})");
    ASSERT_EQ(samples.size(), 2u * 48000 * 3);
    for (const float value : samples)
        ASSERT_EQ(value, 0.0f);
}

TEST_F(MixerMediaTest, ARangeStartsWithTheWholeMixesSamplesThere) {
    const Project::Edit busy = edit(R"({"reelsmith_project": 1, "loudness_lufs": -18, "tracks": [
        {"type": "video", "clips": [
          {"source": "MEDIA/h264_aac.mp4", "in_ms": 700, "volume_db": -3},
          {"source": "MEDIA/speech.mov", "transition": {"type": "fade", "duration_ms": 400}}]},
        {"type": "audio", "clips": [
          {"source": "MEDIA/tone.wav", "start_ms": 200, "in_ms": 100, "loop": true,
           "fade_in_ms": 300, "fade_out_ms": 600}],
         "duck": {"amount_db": -10, "threshold_db": -35, "attack_ms": 100, "release_ms": 500}}]})");
    std::vector<float> whole;
    Mixer all(busy);
    Velmor::AV::Frame block;
    while (all.next(block))
        whole.insert(whole.end(), Velmor::AV::channelOf(block, 1),
                     Velmor::AV::channelOf(block, 1) + block.samples());
    for (const std::int64_t first : {std::int64_t(62417), std::int64_t(150001)}) {
        Mixer range(busy, first);
        std::int64_t at = first;
        while (range.next(block)) {
            EXPECT_EQ(block.timestamp(), at - first);
            for (int index = 0; index < block.samples(); ++index)
                ASSERT_EQ(Velmor::AV::channelOf(block, 1)[index], whole[at + index])
                    << first << " + " << at + index - first;
            at += block.samples();
        }
        EXPECT_EQ(at, static_cast<std::int64_t>(whole.size()));
    }
}

} // namespace
