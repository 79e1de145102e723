#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::psnr;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;
using nlohmann::json;

namespace {

struct Moment {
    const char* name;
    const char* file;
    int atMs;
    int frameMs; // -1: whichever frame ffmpeg agrees on
    bool lossless;
};

class ThumbnailCrossCheckTest : public testing::Test {
protected:
    // Runs the host's thumbnail and returns its value, or null when it failed.
    json thumbnail(const QString& path, QStringList options, const QString& output) {
        options.prepend("--output=" + output);
        options.prepend(path);
        options.prepend("thumbnail");
        const HostRun run = runHost(options);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        EXPECT_EQ(run.errors, "");
        if (run.exitCode != 0 || run.outputLines().size() != 1)
            return nullptr;
        return json::parse(run.output.toStdString()).at("thumbnail");
    }

    // ffmpeg's picture of the first frame at or after the time, with a filter when given.
    QByteArray ffmpegFrame(const QString& path, int ms, const QString& filter = {}) {
        const QString reference = directory.filePath(QStringLiteral("ref.png"));
        QStringList arguments{
            "-nostdin", "-v", "error",     "-y", "-ss", QString::number(ms / 1000.0, 'f', 3),
            "-i",       path, "-frames:v", "1"};
        if (!filter.isEmpty())
            arguments << "-vf" << filter;
        arguments << reference;
        const ToolRun run = runTool(QStringLiteral("ffmpeg"), arguments);
        EXPECT_TRUE(run.started) << "ffmpeg is part of the test tools (scripts/setup)";
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return rgbPixels(reference);
    }

    QString output(const char* name) const { return directory.filePath(name); }

    QTemporaryDir directory;
};

class ThumbnailAtTimeTest : public ThumbnailCrossCheckTest,
                            public testing::WithParamInterface<Moment> {};

TEST_P(ThumbnailAtTimeTest, TheThumbnailIsTheFrameFfmpegExtractsAtTheReportedTime) {
    const Moment& moment = GetParam();
    const QString path = QString::fromStdString(mediaFixture(moment.file));
    const json taken =
        thumbnail(path, {QStringLiteral("--at=%1").arg(moment.atMs)}, output("ours.png"));
    ASSERT_TRUE(taken.is_object());
    EXPECT_EQ(taken.at("at_ms"), moment.atMs);
    const int frameMs = taken.at("frame_ms").get<int>();
    EXPECT_LE(frameMs, moment.atMs);
    if (moment.frameMs >= 0) {
        EXPECT_EQ(frameMs, moment.frameMs);
    }

    const QByteArray ours = rgbPixels(output("ours.png"));
    EXPECT_EQ(ours.size(), taken.at("width").get<int>() * taken.at("height").get<int>() * 3);
    const QByteArray theirs = ffmpegFrame(path, frameMs);
    ASSERT_EQ(ours.size(), theirs.size());
    if (moment.lossless) {
        EXPECT_TRUE(ours == theirs) << "PSNR " << psnr(ours, theirs) << " dB";
    } else {
        EXPECT_GE(psnr(ours, theirs), 40.0);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Fixtures, ThumbnailAtTimeTest,
    testing::Values(Moment{"Mp4AtTheDefaultZero", "h264_aac.mp4", 0, 0, false},
                    // A key frame each second: 1500 ms needs decoding from the one at 1000.
                    Moment{"Mp4MidGop", "h264_aac.mp4", 1500, 1480, false},
                    Moment{"Mp4JustBeforeTheEnd", "noaudio.mp4", 1999, 1960, false},
                    Moment{"MkvVp9", "vp9_opus.mkv", 1000, -1, false},
                    // 30 frames a second: the frame at 1233.3 ms, reported as 1233.
                    Moment{"MovBetweenFrames", "clip.mov", 1234, 1233, false},
                    Moment{"WebM", "clip.webm", 1000, -1, false},
                    Moment{"Portrait", "portrait.mp4", 700, 680, false},
                    Moment{"OddWidth", "wide_1921x1080.mp4", 520, 520, false},
                    Moment{"PngStill", "still.png", 0, 0, true},
                    Moment{"LosslessIsEqualToTheByte", "lossless.mkv", 480, 480, true}),
    [](const testing::TestParamInfo<Moment>& info) { return info.param.name; });

// Rows and columns of packed RGB that are black in every byte.
bool blackRegion(const QByteArray& rgb, int width, int left, int top, int right, int bottom) {
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            for (int c = 0; c < 3; ++c) {
                if (rgb[(y * width + x) * 3 + c] != 0)
                    return false;
            }
        }
    }
    return true;
}

TEST_F(ThumbnailCrossCheckTest, FitToASquareBarsALandscapeFrameAboveAndBelow) {
    const QString path = QString::fromStdString(mediaFixture("h264_aac.mp4"));
    const json taken = thumbnail(
        path, {"--preset-frame-size=160:160", "--preset-resize-fill-mode=Fit"}, output("t.png"));
    ASSERT_TRUE(taken.is_object());
    EXPECT_EQ(taken.at("width"), 160);
    EXPECT_EQ(taken.at("height"), 160);
    const QByteArray ours = rgbPixels(output("t.png"));
    ASSERT_EQ(ours.size(), 160 * 160 * 3);
    // 320x240 scales to 160x120: 20 black rows on each side.
    EXPECT_TRUE(blackRegion(ours, 160, 0, 0, 160, 20));
    EXPECT_TRUE(blackRegion(ours, 160, 0, 140, 160, 160));
    EXPECT_FALSE(blackRegion(ours, 160, 0, 20, 160, 21));
    EXPECT_FALSE(blackRegion(ours, 160, 0, 139, 160, 140));
    EXPECT_GE(psnr(ours, ffmpegFrame(path, 0, "scale=160:120,pad=160:160:0:20")), 40.0);
}

TEST_F(ThumbnailCrossCheckTest, FitToASquareBarsAPortraitFrameLeftAndRightOnTheChromaGrid) {
    const QString path = QString::fromStdString(mediaFixture("portrait.mp4"));
    const json taken = thumbnail(
        path, {"--preset-frame-size=160:160", "--preset-resize-fill-mode=Fit"}, output("t.png"));
    ASSERT_TRUE(taken.is_object());
    const QByteArray ours = rgbPixels(output("t.png"));
    ASSERT_EQ(ours.size(), 160 * 160 * 3);
    // 180x320 scales to 90x160; centring would put it at 35, which 4:2:0 rounds down to 34.
    EXPECT_TRUE(blackRegion(ours, 160, 0, 0, 34, 160));
    EXPECT_TRUE(blackRegion(ours, 160, 124, 0, 160, 160));
    EXPECT_FALSE(blackRegion(ours, 160, 34, 0, 35, 160));
    EXPECT_FALSE(blackRegion(ours, 160, 123, 0, 124, 160));
    EXPECT_GE(psnr(ours, ffmpegFrame(path, 0, "scale=90:160,pad=160:160:34:0")), 40.0);
}

} // namespace
