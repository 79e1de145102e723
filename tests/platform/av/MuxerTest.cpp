#include "platform/av/Muxer.h"

#include "platform/av/Demuxer.h"
#include "platform/av/Encoder.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"
#include "platform/av/Picture.h"
#include "tests/support/FailedWith.h"

#include <QProcess>
#include <QTemporaryDir>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    std::string path(const std::string& name) const {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }
    QTemporaryDir directory;
};

TEST_F(MuxerTest, Mp4WantsTheCodecsHeadersOutOfBand) {
    EXPECT_TRUE(Muxer(path("a.mp4"), "mp4").wantsGlobalHeader());
    EXPECT_FALSE(Muxer(path("a.ts"), "mpegts").wantsGlobalHeader());
}

TEST_F(MuxerTest, PacketsAreRescaledToTheStreamsTimeBaseChosenAtTheHeader) {
    const std::string file = path("out.mp4");
    {
        Muxer muxer(file, "mp4");
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

TEST_F(MuxerTest, TheHeaderOfAFileThatCanNotBeCreatedFailsWithTheSystemsReason) {
    const std::string file = path("missing/out.mp4");
    Muxer muxer(file, "mp4");
    muxer.addStream(*videoEncoder(true));
    EXPECT_THAT([&] { muxer.writeHeader(); },
                FailedWith<MediaError>("Can not write " + file + ": No such file or directory"));
}

TEST_F(MuxerTest, AnUnknownContainerFailsNamingThePath) {
    EXPECT_THAT([&] { Muxer(path("a.xyz"), "nosuchformat"); },
                FailedWith<MediaError>("Can not write " + path("a.xyz") + ": Invalid argument"));
}

TEST_F(MuxerTest, AMuxerLeftWithoutItsTrailerClosesItsFile) {
    const std::string file = path("unfinished.mp4");
    {
        Muxer muxer(file, "mp4");
        auto encoder = videoEncoder(true);
        const int stream = muxer.addStream(*encoder);
        muxer.writeHeader();
        writePictures(muxer, *encoder, stream, 5);
    }
    EXPECT_TRUE(std::filesystem::exists(file));
}
