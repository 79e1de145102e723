#include "platform/av/Muxer.h"

#include "platform/av/Demuxer.h"
#include "platform/av/Encoder.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"
#include "platform/av/Picture.h"
#include "tests/support/FailedWith.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

extern "C" {
#include <libavformat/avformat.h>
}

using EditorService::Testing::FailedWith;
using namespace Velmor::AV;

namespace {

std::unique_ptr<Encoder> videoEncoder(bool globalHeader) {
    VideoEncoderSettings settings;
    settings.encoder = "libx264";
    settings.width = 64;
    settings.height = 48;
    settings.pixelFormat = pixelFormat("yuv420p");
    settings.timeBase = {1, 1000};
    settings.frameRate = {25, 1};
    settings.speed = "ultrafast";
    settings.globalHeader = globalHeader;
    return Encoder::video(settings);
}

void writePictures(Muxer& muxer, Encoder& encoder, int stream, int count) {
    Packet packet;
    auto take = [&] {
        while (encoder.receive(packet))
            muxer.write(stream, packet);
    };
    for (int index = 0; index < count; ++index) {
        Frame picture = Frame::picture(64, 48, pixelFormat("yuv420p"));
        picture.setTimestamp(index * 40);
        while (!encoder.send(&picture))
            take();
        take();
    }
    encoder.send(nullptr);
    take();
}

} // namespace

class MuxerTest : public testing::Test {
protected:
    void TearDown() override {
        for (int descriptor : descriptors)
            ::close(descriptor);
    }

    std::string path(const std::string& name) const {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }
    // A new file open for reading and writing, as the muxer wants it.
    int open(const std::string& name, int mode = O_RDWR) {
        const int descriptor = ::open(path(name).c_str(), mode | O_CREAT | O_TRUNC, 0644);
        EXPECT_GE(descriptor, 0) << name;
        descriptors.push_back(descriptor);
        return descriptor;
    }

    QTemporaryDir directory;
    std::vector<int> descriptors;
};

TEST_F(MuxerTest, Mp4WantsTheCodecsHeadersOutOfBand) {
    EXPECT_TRUE(Muxer(open("a.mp4"), "a.mp4", "mp4").wantsGlobalHeader());
    EXPECT_FALSE(Muxer(open("a.ts"), "a.ts", "mpegts").wantsGlobalHeader());
}

TEST_F(MuxerTest, PacketsAreRescaledToTheStreamsTimeBaseChosenAtTheHeader) {
    const std::string file = path("out.mp4");
    {
        Muxer muxer(open("out.mp4"), file, "mp4");
        auto encoder = videoEncoder(muxer.wantsGlobalHeader());
        const int stream = muxer.addStream(*encoder);
        muxer.writeHeader();
        writePictures(muxer, *encoder, stream, 25);
        muxer.finish();
        EXPECT_EQ(muxer.written(stream).packets, 25);
        EXPECT_EQ(muxer.written(stream).durationMs, 1000);
        EXPECT_GT(muxer.written(stream).bytes, 0);
    }
    Demuxer demuxer(file);
    EXPECT_NE(demuxer.timeBase(0), (Rational{1, 1000}));
    EXPECT_EQ(demuxer.info().durationMs, 1000);
    EXPECT_EQ(demuxer.frameRate(0), (Rational{25, 1}));
}

// The index pass reads the file back: through the descriptor, never by the name it was given,
// which here leads nowhere.
TEST_F(MuxerTest, AnMp4GetsItsIndexAtTheFrontWithoutItsNameEverBeingOpened) {
    const std::string nowhere = "/nonexistent/folder/out.mp4";
    {
        Muxer muxer(open("out.mp4"), nowhere, "mp4");
        auto encoder = videoEncoder(true);
        const int stream = muxer.addStream(*encoder);
        muxer.writeHeader();
        writePictures(muxer, *encoder, stream, 25);
        muxer.finish();
    }
    QFile written(QString::fromStdString(path("out.mp4")));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QByteArray bytes = written.readAll();
    ASSERT_GE(bytes.indexOf("moov"), 0);
    EXPECT_LT(bytes.indexOf("moov"), bytes.indexOf("mdat"));
    QProcess ffprobe;
    ffprobe.start("ffprobe",
                  {"-v", "error", "-count_frames", "-show_entries", "stream=nb_read_frames", "-of",
                   "csv=p=0", QString::fromStdString(path("out.mp4"))});
    ASSERT_TRUE(ffprobe.waitForFinished(60000));
    EXPECT_EQ(ffprobe.readAllStandardOutput().trimmed(), "25");
}

TEST_F(MuxerTest, AFileThatCanNotBeWrittenFailsNamingTheOutputWithTheSystemsReason) {
    Muxer muxer(open("out.mp4", O_RDONLY), "out.mp4", "mp4");
    auto encoder = videoEncoder(true);
    const int stream = muxer.addStream(*encoder);
    EXPECT_THAT(
        [&] {
            muxer.writeHeader();
            writePictures(muxer, *encoder, stream, 25);
            muxer.finish();
        },
        FailedWith<MediaError>("Can not write out.mp4: Bad file descriptor"));
}

TEST_F(MuxerTest, AnUnknownContainerFailsNamingTheOutput) {
    EXPECT_THAT([&] { Muxer(open("a.xyz"), "a.xyz", "nosuchformat"); },
                FailedWith<MediaError>("Can not write a.xyz: Invalid argument"));
}

TEST_F(MuxerTest, AMuxerLeftWithoutItsTrailerLeavesItsDescriptorOpen) {
    const int descriptor = open("unfinished.mp4");
    {
        Muxer muxer(descriptor, "unfinished.mp4", "mp4");
        auto encoder = videoEncoder(true);
        const int stream = muxer.addStream(*encoder);
        muxer.writeHeader();
        writePictures(muxer, *encoder, stream, 5);
    }
    EXPECT_NE(::fcntl(descriptor, F_GETFD), -1);
}
