#include "platform/mix/FileSoundReaders.h"
#include "platform/av/AudioBlock.h"
#include "platform/av/MediaError.h"
#include "tests/platform/mix/MixFiles.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Mixing::FileSoundReaders;

namespace {

const Velmor::AV::AudioShape shape{Velmor::AV::planarFloat(), 48000, 2};

// `count` samples of a file's sound from `fromMs`, after passing over `skip` more: the left
// channel, then the right.
std::vector<float> read(const std::string& name, std::int64_t fromMs, int count,
                        std::int64_t skip = 0) {
    FileSoundReaders readers;
    const auto reader = readers.open(QString::fromStdString(mediaFixture(name)), fromMs, shape);
    reader->skip(skip);
    Velmor::AV::Frame block = Velmor::AV::silentBlock(48000, 2, count);
    // In two reads, the second into the middle of the block.
    reader->read(block, 0, count / 3);
    reader->read(block, count / 3, count - count / 3);
    std::vector<float> samples(Velmor::AV::channelOf(block, 0),
                               Velmor::AV::channelOf(block, 0) + count);
    samples.insert(samples.end(), Velmor::AV::channelOf(block, 1),
                   Velmor::AV::channelOf(block, 1) + count);
    return samples;
}

TEST(FileSoundReadersTest, AReaderGivesTheFilesSamplesFromItsTime) {
    const std::vector<float> decoded = decodedSamples(mediaFixture("ramp.wav"));
    const std::vector<float> samples = read("ramp.wav", 750, 1000);
    for (int index = 0; index < 1000; ++index) {
        ASSERT_EQ(samples[index], decoded[2 * (36000 + index)]) << index;
        ASSERT_EQ(samples[1000 + index], decoded[2 * (36000 + index) + 1]) << index;
    }
}

TEST(FileSoundReadersTest, TheSoundIsSilentAfterItsEnd) {
    const std::vector<float> samples = read("ramp.wav", 900, 9600);
    EXPECT_GT(samples[4799], 0.99f);
    for (int index = 4800; index < 9600; ++index)
        ASSERT_EQ(samples[index], 0.0f) << index;
}

TEST(FileSoundReadersTest, AReaderFromPastTheSoundsEndGivesSilence) {
    for (const float value : read("ramp.wav", 1500, 2000))
        ASSERT_EQ(value, 0.0f);
}

TEST(FileSoundReadersTest, ASoundThatStartsAfterItsFileIsSilentBefore) {
    const std::vector<float> samples = read("late_sound.mov", 200, 24000);
    EXPECT_EQ(samples[14399], 0.0f);
    EXPECT_EQ(samples[14400], 0.5f);
    EXPECT_EQ(samples[24000 + 23999], 0.5f);
}

TEST(FileSoundReadersTest, ReadersOpenedAlikeGiveTheSameSamples) {
    const std::vector<float> first = read("h264_aac.mp4", 1200, 4800);
    const std::vector<float> second = read("h264_aac.mp4", 1200, 4800);
    EXPECT_EQ(first, second);
    EXPECT_GT(*std::max_element(first.begin(), first.end()), 0.05f);
}

TEST(FileSoundReadersTest, AReaderFromATimeSoundsAsAReaderFromTheStartPassingOverIt) {
    const std::vector<float> sought = read("h264_aac.mp4", 1200, 4800);
    const std::vector<float> passed = read("h264_aac.mp4", 0, 4800, 57600);
    // Resampled from 44.1 kHz, the two start the resampler at other input samples.
    for (std::size_t index = 0; index < sought.size(); ++index)
        ASSERT_NEAR(sought[index], passed[index], 0.01) << index;
}

TEST(FileSoundReadersTest, AMonoFilePlaysOnBothChannelsAtTheMixesRate) {
    const std::vector<float> samples = read("tone.wav", 0, 48000 + 100);
    double power = 0;
    for (int index = 0; index < 48000; ++index) {
        ASSERT_EQ(samples[index], samples[48100 + index]) << index;
        power += samples[index] * samples[index];
    }
    EXPECT_GT(power, 0);
    EXPECT_LT(std::abs(samples[48050]), 1e-3);
}

TEST(FileSoundReadersTest, AFileWithoutSoundIsSilence) {
    const std::vector<float> samples = read("noaudio.mp4", 500, 2000);
    for (const float value : samples)
        ASSERT_EQ(value, 0.0f);
}

TEST(FileSoundReadersTest, AMissingFileFailsAsOpeningItDoes) {
    const std::string path = mediaFixture("gone.wav");
    FileSoundReaders readers;
    EXPECT_THAT([&] { readers.open(QString::fromStdString(path), 0, shape); },
                FailedWith<Velmor::AV::MediaError>("Can not open media file: " + path
                                                   + ": No such file or directory"));
}

} // namespace
