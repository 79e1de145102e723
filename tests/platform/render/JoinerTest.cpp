#include "platform/render/Joiner.h"

#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Picture.h"
#include "platform/render/FrameSink.h"
#include "platform/render/Writer.h"
#include "tests/platform/render/Ffprobe.h"
#include "tests/support/FailedWith.h"
#include "tests/support/NewFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::ffprobe;
using EditorService::Testing::NewFile;
using Velmor::AV::Frame;
using Velmor::AV::pixelFormat;
using Velmor::Render::FrameSink;
using Velmor::Render::JoinedPart;
using Velmor::Render::Joiner;
using Velmor::Render::VideoEncoding;
using Velmor::Render::VideoFormat;
using Velmor::Render::Writer;
using Velmor::Render::WriterResult;

namespace {

const VideoFormat pictures{64, 48, pixelFormat("yuv420p"), {25, 1}, {1, 25}};

// `count` pictures, grey at `level`, timed from 0: one part, encoded on its own.
void writePart(const std::string& path, int count, int level) {
    NewFile file(path);
    Writer writer(file.descriptor, path, "mp4");
    FrameSink& sink = writer.addVideo(
        pictures, VideoEncoding{"libx264", Velmor::AV::RateControl::Quality, 0, true});
    for (int index = 0; index < count; ++index) {
        Frame picture = Frame::picture(64, 48, pixelFormat("yuv420p"));
        for (int plane = 0; plane < 3; ++plane) {
            for (int row = 0; row < picture->height >> (plane ? 1 : 0); ++row)
                std::memset(picture->data[plane] + row * picture->linesize[plane],
                            plane ? 128 : level + index, picture->linesize[plane]);
        }
        picture.setTimestamp(index);
        sink.write(picture);
    }
    sink.close();
    writer.finish();
}

// Two seconds of silence at 48 kHz.
void writeSound(const std::string& path) {
    NewFile file(path);
    Writer writer(file.descriptor, path, "mp4");
    FrameSink& sink = writer.addAudio({AV_SAMPLE_FMT_FLTP, 48000, 1}, {"aac", 64000});
    for (int index = 0; index < 200; ++index) {
        Frame block;
        block->format = AV_SAMPLE_FMT_FLTP;
        block->sample_rate = 48000;
        av_channel_layout_default(&block->ch_layout, 1);
        block->nb_samples = 480;
        EXPECT_GE(av_frame_get_buffer(block.get(), 0), 0);
        av_samples_set_silence(block->extended_data, 0, 480, 1, AV_SAMPLE_FMT_FLTP);
        block.setTimestamp(index * 480);
        sink.write(block);
    }
    sink.close();
    writer.finish();
}

class JoinerTest : public testing::Test {
protected:
    std::string path(const char* name) const { return directory.filePath(name).toStdString(); }

    void SetUp() override {
        writePart(path("a.mp4"), 25, 40);
        writePart(path("b.mp4"), 25, 140);
        writeSound(path("sound.mp4"));
    }

    QTemporaryDir directory;
};

} // namespace

TEST_F(JoinerTest, CopiesThePartsOneAfterTheOtherAndTheSoundBeside) {
    WriterResult result;
    {
        NewFile file(path("joined.mp4"));
        Joiner joiner(file.descriptor, path("joined.mp4"), "mp4");
        result = joiner.join({{path("a.mp4"), 0}, {path("b.mp4"), 1000000}}, path("sound.mp4"));
    }
    ASSERT_EQ(result.streams.size(), 2u);
    EXPECT_EQ(result.streams[0].codec, "h264");
    EXPECT_EQ(result.streams[0].packets, 50);
    EXPECT_EQ(result.streams[0].width, 64);
    EXPECT_EQ(result.streams[1].codec, "aac");
    EXPECT_EQ(result.streams[1].sampleRate, 48000);
    EXPECT_EQ(result.durationMs, 2000);
    EXPECT_EQ(result.bytes, QFile(directory.filePath("joined.mp4")).size());

    const auto probed = ffprobe(path("joined.mp4"), {"-show_streams", "-count_frames"});
    EXPECT_EQ(probed.at("streams").at(0).at("nb_read_frames"), "50");
    EXPECT_EQ(probed.at("streams").at(0).at("duration"), "2.000000");
    EXPECT_EQ(probed.at("streams").at(1).at("codec_name"), "aac");
    // The second part shows from 1 s on.
    const auto frames =
        ffprobe(path("joined.mp4"), {"-select_streams", "v:0", "-show_entries", "frame=pts_time",
                                     "-read_intervals", "0.9%1.1"});
    std::vector<std::string> times;
    for (const auto& frame : frames.at("frames"))
        times.push_back(frame.at("pts_time"));
    EXPECT_THAT(times, testing::IsSupersetOf({"0.960000", "1.000000", "1.040000"}));
}

TEST_F(JoinerTest, TheIndexIsAtTheFront) {
    {
        NewFile file(path("joined.mp4"));
        Joiner(file.descriptor, path("joined.mp4"), "mp4")
            .join({{path("a.mp4"), 0}, {path("b.mp4"), 1000000}}, "");
    }
    QFile file(directory.filePath("joined.mp4"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray head = file.read(64);
    EXPECT_EQ(head.mid(int(quint8(head[3])) + 4, 4), "moov");
}

TEST_F(JoinerTest, APartWithoutVideoFailsNamingIt) {
    NewFile file(path("joined.mp4"));
    Joiner joiner(file.descriptor, path("joined.mp4"), "mp4");
    EXPECT_THAT(failureOf([&] {
                    joiner.join({{path("a.mp4"), 0}, {path("sound.mp4"), 1000000}}, "");
                }),
                FailedWith<Velmor::AV::MediaError>("Can not join " + path("joined.mp4") + ": "
                                                   + path("sound.mp4") + " has no video"));
}
