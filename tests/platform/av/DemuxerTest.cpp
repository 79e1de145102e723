#include "platform/av/Demuxer.h"

#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"
#include "platform/av/Rational.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

extern "C" {
#include <libavcodec/packet.h>
}

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::mediaFixture;
using Velmor::AV::Demuxer;
using Velmor::AV::MediaError;
using Velmor::AV::Packet;

namespace {

std::exception_ptr openingFailure(const std::string& path) {
    return failureOf([&] { Demuxer demuxer(path); });
}

} // namespace

TEST(DemuxerTest, DescribesAnMp4WithVideoAndAudio) {
    const Demuxer demuxer(mediaFixture("h264_aac.mp4"));
    const auto& info = demuxer.info();
    EXPECT_EQ(info.path, mediaFixture("h264_aac.mp4"));
    EXPECT_EQ(info.format, "mov,mp4,m4a,3gp,3g2,mj2");
    EXPECT_NEAR(static_cast<double>(info.durationMs), 2000, 50);
    ASSERT_TRUE(info.bitRate.has_value());
    EXPECT_GT(*info.bitRate, 0);
    EXPECT_GT(info.size, 0);
    ASSERT_EQ(info.streams.size(), 2u);
    EXPECT_EQ(info.streams[0].type, "video");
    EXPECT_EQ(info.streams[0].codec, "h264");
    EXPECT_EQ(info.streams[0].width, 320);
    EXPECT_EQ(info.streams[0].height, 240);
    EXPECT_EQ(info.streams[0].frameRate, "25/1");
    EXPECT_EQ(info.streams[0].pixelFormat, "yuv420p");
    EXPECT_EQ(info.streams[1].type, "audio");
    EXPECT_EQ(info.streams[1].codec, "aac");
    EXPECT_EQ(info.streams[1].sampleRate, 44100);
    EXPECT_EQ(info.streams[1].channels, 2);
}

TEST(DemuxerTest, FindsTheBestStreamOfEachType) {
    const Demuxer demuxer(mediaFixture("h264_aac.mp4"));
    EXPECT_EQ(demuxer.bestStream("video"), 0);
    EXPECT_EQ(demuxer.bestStream("audio"), 1);
    const Demuxer silent(mediaFixture("noaudio.mp4"));
    EXPECT_EQ(silent.bestStream("audio"), -1);
    const Demuxer sound(mediaFixture("tone.wav"));
    EXPECT_EQ(sound.bestStream("video"), -1);
}

TEST(DemuxerTest, ReadsEveryPacketThenReportsTheEnd) {
    Demuxer demuxer(mediaFixture("noaudio.mp4"));
    Packet packet;
    int packets = 0;
    while (demuxer.read(packet)) {
        EXPECT_EQ(packet.streamIndex(), 0);
        ++packets;
    }
    EXPECT_EQ(packets, 50);
    EXPECT_FALSE(demuxer.read(packet));
}

TEST(DemuxerTest, ReadingOnlyOneStreamSkipsTheOthers) {
    Demuxer demuxer(mediaFixture("h264_aac.mp4"));
    demuxer.readOnly(1);
    Packet packet;
    int packets = 0;
    while (demuxer.read(packet)) {
        EXPECT_EQ(packet.streamIndex(), 1);
        ++packets;
    }
    EXPECT_GT(packets, 80);
}

TEST(DemuxerTest, SeekingBackwardsLandsOnAKeyFrameAtOrBeforeTheTime) {
    Demuxer demuxer(mediaFixture("noaudio.mp4"));
    Packet packet;
    while (demuxer.read(packet)) {
    }
    demuxer.seek(0, 0);
    ASSERT_TRUE(demuxer.read(packet));
    EXPECT_TRUE(packet->flags & AV_PKT_FLAG_KEY);
    EXPECT_EQ(packet->pts, 0);
}

TEST(DemuxerTest, AMissingFileFailsWithTheLibrarysReason) {
    EXPECT_THAT(openingFailure("/nonexistent/clip.mp4"),
                FailedWith<MediaError>(
                    "Can not open media file: /nonexistent/clip.mp4: No such file or directory"));
}

TEST(DemuxerTest, AFileThatIsNoMediaFailsAsInvalidData) {
    const auto path = mediaFixture("notmedia.txt");
    EXPECT_THAT(openingFailure(path),
                FailedWith<MediaError>("Can not open media file: " + path
                                       + ": Invalid data found when processing input"));
}

TEST(DemuxerTest, AnEmptyFileFailsAsInvalidData) {
    const auto path = mediaFixture("empty.mp4");
    EXPECT_THAT(openingFailure(path),
                FailedWith<MediaError>("Can not open media file: " + path
                                       + ": Invalid data found when processing input"));
}

TEST(DemuxerTest, ATruncatedFileFailsAsInvalidData) {
    const auto path = mediaFixture("truncated.mp4");
    EXPECT_THAT(openingFailure(path),
                FailedWith<MediaError>("Can not open media file: " + path
                                       + ": Invalid data found when processing input"));
}

TEST(DemuxerTest, ADirectoryFailsWithTheSystemsReason) {
    const QTemporaryDir directory;
    const auto path = directory.path().toStdString();
    EXPECT_THAT(openingFailure(path),
                FailedWith<MediaError>("Can not open media file: " + path + ": Is a directory"));
}

TEST(DemuxerTest, AnInterruptedOpenGivesUp) {
    EXPECT_THAT([&] { Demuxer demuxer(mediaFixture("h264_aac.mp4"), [] { return true; }); },
                FailedWith<MediaError>(("Can not open media file: " + mediaFixture("h264_aac.mp4")
                                        + ": Immediate exit requested")
                                           .c_str()));
}

TEST(DemuxerTest, TellsEachStreamsTimeBaseFrameRateAndTheFilesStart) {
    Demuxer demuxer(mediaFixture("clip.mov"));
    const int video = demuxer.bestStream("video");
    EXPECT_EQ(demuxer.frameRate(video), (Velmor::AV::Rational{30, 1}));
    EXPECT_GT(demuxer.timeBase(video).den, 0);
    EXPECT_EQ(demuxer.timeBase(demuxer.bestStream("audio")), (Velmor::AV::Rational{1, 48000}));
    EXPECT_EQ(demuxer.startTime(), 0);
}

// As ffprobe shows them: video 0.007 s and audio -0.007 s in a time base of 1/1000; a still
// tells none.
TEST(DemuxerTest, TellsEachStreamsStart) {
    Demuxer demuxer(mediaFixture("vp9_opus.mkv"));
    EXPECT_EQ(demuxer.streamStartTime(demuxer.bestStream("video")), 7);
    EXPECT_EQ(demuxer.streamStartTime(demuxer.bestStream("audio")), -7);
    Demuxer still(mediaFixture("still.png"));
    EXPECT_EQ(still.streamStartTime(0), Velmor::AV::noTimestamp);
}

// ffprobe lists the key packets of noaudio.mp4 (time base 1/12800) at dts -1024 and 11776.
TEST(DemuxerTest, FindsTheIndexedKeyFrameAtOrBeforeATimeInDecodingOrder) {
    Demuxer demuxer(mediaFixture("noaudio.mp4"));
    EXPECT_EQ(demuxer.indexedKeyFrameAtOrBefore(0, 19200), 11776);
    EXPECT_EQ(demuxer.indexedKeyFrameAtOrBefore(0, 11776), 11776);
    EXPECT_EQ(demuxer.indexedKeyFrameAtOrBefore(0, 11775), -1024);
    EXPECT_EQ(demuxer.indexedKeyFrameAtOrBefore(0, -2000), Velmor::AV::noTimestamp);
}

TEST(DemuxerTest, AReadOfAFifoThatNeverDeliversAsksTheCallbackAndGivesUp) {
    QTemporaryDir directory;
    const std::string fifo = directory.filePath("stalled").toStdString();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    // A writer that never writes: without it the read would end at once.
    const int writer = ::open(fifo.c_str(), O_RDWR);
    ASSERT_GE(writer, 0);
    std::atomic<int> asked{0};
    EXPECT_THAT(
        [&] { Demuxer demuxer(fifo, [&] { return ++asked > 20; }); },
        FailedWith<MediaError>("Can not open media file: " + fifo + ": Immediate exit requested"));
    ::close(writer);
    EXPECT_GT(asked, 20);
}

TEST(DemuxerTest, ReadsTheDisplayRotationAndThePixelShapeOfAVideoStream) {
    const Demuxer rotated(mediaFixture("rotate90.mp4"));
    const auto& turned = rotated.info().streams.at(0);
    EXPECT_EQ(turned.rotation, 90);
    EXPECT_EQ(turned.width, 160);
    EXPECT_EQ(turned.height, 90);
    EXPECT_EQ(turned.sampleAspectRatio, (Velmor::AV::Rational{1, 1}));

    const Demuxer anamorphic(mediaFixture("sar_64_45.mp4"));
    EXPECT_EQ(anamorphic.info().streams.at(0).sampleAspectRatio, (Velmor::AV::Rational{64, 45}));
    EXPECT_EQ(anamorphic.info().streams.at(0).rotation, 0);
    EXPECT_FALSE(rotated.info().streams.at(0).mirrored);
}

TEST(DemuxerTest, TellsADisplayMatrixThatMirrorsFromOneThatTurns) {
    const Demuxer flipped(mediaFixture("mirror_h.mp4"));
    EXPECT_TRUE(flipped.info().streams.at(0).mirrored);
    EXPECT_EQ(flipped.info().streams.at(0).rotation, -180);
    const Demuxer transposed(mediaFixture("mirror_transposed.mp4"));
    EXPECT_TRUE(transposed.info().streams.at(0).mirrored);
    EXPECT_EQ(transposed.info().streams.at(0).rotation, -90);
}

TEST(DemuxerTest, AFileCanSeekAndAPipeCanNot) {
    EXPECT_TRUE(Demuxer(mediaFixture("h264_aac.mp4")).canSeek());
    QTemporaryDir directory;
    const std::string fifo = directory.filePath("fed").toStdString();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    // Opened for writing only once the demuxer waits for a writer.
    std::thread writer([&fifo] {
        QFile input(QString::fromStdString(mediaFixture("open_gop.ts")));
        QFile output(QString::fromStdString(fifo));
        if (input.open(QIODevice::ReadOnly) && output.open(QIODevice::WriteOnly))
            output.write(input.readAll());
    });
    {
        Demuxer fed(fifo);
        EXPECT_FALSE(fed.canSeek());
        Packet packet;
        while (fed.read(packet)) {
        }
    }
    writer.join();
}

TEST(DemuxerTest, APipeNobodyWritesToIsWaitedForUntilTheCallbackGivesUp) {
    QTemporaryDir directory;
    const std::string fifo = directory.filePath("unfed").toStdString();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::atomic<int> asked{0};
    EXPECT_THAT(
        [&] { Demuxer demuxer(fifo, [&] { return ++asked > 5; }); },
        FailedWith<MediaError>("Can not open media file: " + fifo + ": Immediate exit requested"));
    EXPECT_GT(asked, 5);
}

TEST(DemuxerTest, TakesNoCoverArtForTheVideo) {
    const Demuxer demuxer(mediaFixture("cover_art.mp3"));
    EXPECT_TRUE(demuxer.info().streams.at(1).attachedPicture);
    EXPECT_EQ(demuxer.bestStream("video"), -1);
    EXPECT_EQ(demuxer.bestStream("audio"), 0);
}

TEST(DemuxerTest, CountsTheTimelineOfMp4AndMatroskaFromZeroAndOfMpegTsFromItsFirstTimestamp) {
    const Demuxer late(mediaFixture("start_10s.mp4"));
    EXPECT_EQ(late.startTime(), 10000000);
    EXPECT_EQ(late.origin(), 0);
    EXPECT_EQ(late.info().durationMs, 13000);

    const Demuxer broadcast(mediaFixture("open_gop.ts"));
    EXPECT_GT(broadcast.startTime(), 1000000);
    EXPECT_EQ(broadcast.origin(), broadcast.startTime());
}
