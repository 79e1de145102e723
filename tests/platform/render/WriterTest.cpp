#include "platform/render/Writer.h"

#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Picture.h"
#include "platform/render/FrameSink.h"
#include "tests/platform/render/Ffprobe.h"
#include "tests/support/NewFile.h"
#include "tests/support/FailedWith.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

using EditorService::Testing::FailedWith;
using EditorService::Testing::ffprobe;
using EditorService::Testing::NewFile;
using Velmor::AV::Frame;
using Velmor::AV::MediaError;
using Velmor::AV::pixelFormat;
using Velmor::Render::AudioEncoding;
using Velmor::Render::AudioFormat;
using Velmor::Render::FrameSink;
using Velmor::Render::VideoEncoding;
using Velmor::Render::VideoFormat;
using Velmor::Render::Writer;
using Velmor::Render::WriterResult;

namespace {

const VideoFormat pictures{64, 48, pixelFormat("yuv420p"), {25, 1}, {1, 25}};
const VideoEncoding x264{"libx264", Velmor::AV::RateControl::Quality, 0};
const AudioEncoding aac{"aac", 64000};
const AudioFormat sound{AV_SAMPLE_FMT_FLTP, 48000, 1};

void writePictures(FrameSink& sink, int count, int width = 64, int height = 48) {
    for (int index = 0; index < count; ++index) {
        Frame picture = Frame::picture(width, height, pixelFormat("yuv420p"));
        picture.setTimestamp(index);
        EXPECT_TRUE(sink.write(picture));
    }
    sink.close();
}

// `count` blocks of 480 silent samples from `first` on, one after another.
void writeSound(FrameSink& sink, int count, std::int64_t first = 0) {
    for (int index = 0; index < count; ++index) {
        Frame block;
        block->format = AV_SAMPLE_FMT_FLTP;
        block->sample_rate = 48000;
        av_channel_layout_default(&block->ch_layout, 1);
        block->nb_samples = 480;
        EXPECT_GE(av_frame_get_buffer(block.get(), 0), 0);
        av_samples_set_silence(block->extended_data, 0, 480, 1, AV_SAMPLE_FMT_FLTP);
        block.setTimestamp(first + index * 480);
        EXPECT_TRUE(sink.write(block));
    }
    sink.close();
}

class WriterTest : public testing::Test {
protected:
    std::string output() const { return directory.filePath("out.mp4").toStdString(); }
    QTemporaryDir directory;
    NewFile file{output()};
};

} // namespace

TEST_F(WriterTest, StreamsWrittenOneAfterTheOtherOnOneThreadMakeAFileInTheOrderTheyWereAdded) {
    Writer writer(file.descriptor, output(), "mp4");
    FrameSink& video = writer.addVideo(pictures, x264);
    FrameSink& audio = writer.addAudio(sound, aac);
    // All the pictures first: their packets wait until the sound's encoder has opened too.
    writePictures(video, 25);
    writeSound(audio, 100);
    const WriterResult result = writer.finish();

    const nlohmann::json probed = ffprobe(output());
    ASSERT_EQ(probed["streams"].size(), 2u);
    EXPECT_EQ(probed["streams"][0]["codec_name"], "h264");
    EXPECT_EQ(probed["streams"][0]["nb_read_packets"], "25");
    EXPECT_EQ(probed["streams"][1]["codec_name"], "aac");
    EXPECT_EQ(probed["streams"][1]["sample_rate"], "48000");
    ASSERT_EQ(result.streams.size(), 2u);
    EXPECT_EQ(result.streams[0].codec, "h264");
    EXPECT_EQ(result.streams[0].packets, 25);
    EXPECT_EQ(result.streams[0].durationMs, 1000);
    EXPECT_EQ(result.streams[0].width, 64);
    EXPECT_GT(result.streams[0].bitRate, 0);
    EXPECT_EQ(result.streams[1].codec, "aac");
    EXPECT_EQ(result.streams[1].sampleRate, 48000);
    EXPECT_EQ(result.streams[1].channels, 1);
    EXPECT_NEAR(static_cast<double>(result.streams[1].durationMs), 1000, 25);
    EXPECT_EQ(result.durationMs,
              std::max(result.streams[0].durationMs, result.streams[1].durationMs));
    EXPECT_EQ(result.bytes,
              static_cast<std::int64_t>(QFileInfo(directory.filePath("out.mp4")).size()));
}

TEST_F(WriterTest, TheVideoEncoderOpensFromItsFirstPicturesSize) {
    Writer writer(file.descriptor, output(), "mp4");
    writePictures(writer.addVideo(pictures, x264), 5, 96, 64);
    const WriterResult result = writer.finish();
    EXPECT_EQ(result.streams[0].width, 96);
    const nlohmann::json probed = ffprobe(output());
    EXPECT_EQ(probed["streams"][0]["width"], 96);
    EXPECT_EQ(probed["streams"][0]["height"], 64);
}

TEST_F(WriterTest, SoundThatStartsLaterKeepsItsOffsetAndIsReChunkedForTheEncoder) {
    Writer writer(file.descriptor, output(), "mp4");
    FrameSink& video = writer.addVideo(pictures, x264);
    FrameSink& audio = writer.addAudio(sound, aac);
    writePictures(video, 25);
    // 480 samples (10 ms) after the first picture.
    writeSound(audio, 100, 480);
    writer.finish();
    const nlohmann::json packets =
        ffprobe(output(), {"-select_streams", "a", "-show_entries", "packet=pts"})["packets"];
    // 48000 samples in 47 frames of 1024 (the last one short), after the encoder's priming
    // frame of 1024 samples before the first.
    ASSERT_EQ(packets.size(), 48u);
    EXPECT_EQ(packets[0]["pts"], 480 - 1024);
    EXPECT_EQ(packets[1]["pts"], 480);
    EXPECT_EQ(packets[2]["pts"], 480 + 1024);
}

TEST_F(WriterTest, TheFirstStreamsPacketsAreFollowed) {
    Writer writer(file.descriptor, output(), "mp4");
    FrameSink& video = writer.addVideo(pictures, x264);
    std::vector<std::pair<std::int64_t, std::int64_t>> seen;
    writer.onEncoded(
        [&](std::int64_t packets, std::int64_t endMs) { seen.emplace_back(packets, endMs); });
    writePictures(video, 10);
    writer.finish();
    ASSERT_EQ(seen.size(), 10u);
    EXPECT_EQ(seen.front().first, 1);
    EXPECT_EQ(seen.back(), (std::pair<std::int64_t, std::int64_t>{10, 400}));
}

TEST_F(WriterTest, AStreamAddedAfterTheHeaderIsRefused) {
    Writer writer(file.descriptor, output(), "mp4");
    writePictures(writer.addVideo(pictures, x264), 1);
    EXPECT_THAT([&] { writer.addAudio(sound, aac); },
                FailedWith<std::logic_error>("Can not write " + output()
                                             + ": a stream added after the header"));
}

// The file is the descriptor, never the name: one open for reading only can't take the output.
TEST_F(WriterTest, ADescriptorThatCanNotBeWrittenFailsNamingTheOutputWithTheSystemsReason) {
    const int readOnly = ::open(output().c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(readOnly, 0);
    EXPECT_THAT(
        [&] {
            Writer writer(readOnly, output(), "mp4");
            writePictures(writer.addVideo(pictures, x264), 5);
            writer.finish();
        },
        FailedWith<MediaError>("Can not write " + output() + ": Bad file descriptor"));
    ::close(readOnly);
}

TEST_F(WriterTest, TheAudioFormatIsWhatTheEncoderTakesNearestToWhatIsOffered) {
    const AudioFormat format = Writer::audioFormat(aac, {AV_SAMPLE_FMT_S16, 44000, 2});
    EXPECT_EQ(format.sampleFormat, AV_SAMPLE_FMT_FLTP);
    EXPECT_EQ(format.sampleRate, 44100);
    EXPECT_EQ(format.channels, 2);
}

TEST_F(WriterTest, AnUnknownAudioEncoderFailsNamingIt) {
    EXPECT_THAT(
        [&] {
            Writer::audioFormat({"libnothing", 0}, sound);
        },
        FailedWith<MediaError>("Can not encode with libnothing: Encoder not found"));
}
