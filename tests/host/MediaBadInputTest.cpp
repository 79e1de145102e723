#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runHost;

namespace {

// A command line and the one line it must fail with: a file that is no media, a value that is no
// whole number in range, a preset's value outside what its encoder takes. "{F}" stands for the
// fixtures' directory,
// "{T}" for a scratch directory of the test's own.
struct BadInput {
    const char* name;
    QStringList arguments;
    QString error;
};

class MediaBadInputTest : public testing::TestWithParam<BadInput> {
protected:
    QString expanded(QString text) const {
        const QString fixtures = QFileInfo(QString::fromStdString(mediaFixture("x"))).path();
        return text.replace("{F}", fixtures).replace("{T}", directory.path());
    }

    QuietHostSanitizer quietSanitizer;
    QTemporaryDir directory;
};

TEST_P(MediaBadInputTest, FailsWithStatusOneTheExactErrorLineAndNoOutput) {
    QStringList arguments;
    for (const QString& argument : GetParam().arguments)
        arguments.append(expanded(argument));
    const HostRun run = runHost(arguments);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    // The media libraries may log their own view of the file before the error.
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors),
              QList<QByteArray>{expanded(GetParam().error).toUtf8()})
        << run.errors.toStdString();
    // Nothing is left where a picture or a video was asked for.
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

const QString invalid = QStringLiteral("Invalid data found when processing input");

INSTANTIATE_TEST_SUITE_P(
    Cases, MediaBadInputTest,
    testing::Values(
        BadInput{"ProbeOfAMissingFile",
                 {"probe", "{T}/missing.mp4"},
                 "Can not open media file: {T}/missing.mp4: No such file or directory"},
        BadInput{"ThumbnailOfAMissingFile",
                 {"thumbnail", "{T}/missing.mp4", "--output={T}/t.png"},
                 "Can not open media file: {T}/missing.mp4: No such file or directory"},
        BadInput{"ProbeOfATextFile",
                 {"probe", "{F}/notmedia.txt"},
                 "Can not open media file: {F}/notmedia.txt: " + invalid},
        BadInput{"ThumbnailOfATextFile",
                 {"thumbnail", "{F}/notmedia.txt", "--output={T}/t.png"},
                 "Can not open media file: {F}/notmedia.txt: " + invalid},
        BadInput{
            "ProbeOfADirectory", {"probe", "{T}"}, "Can not open media file: {T}: Is a directory"},
        BadInput{"ThumbnailOfADirectory",
                 {"thumbnail", "{T}", "--output={T}/t.png"},
                 "Can not open media file: {T}: Is a directory"},
        BadInput{"ProbeOfAnEmptyFile",
                 {"probe", "{F}/empty.mp4"},
                 "Can not open media file: {F}/empty.mp4: " + invalid},
        BadInput{"ThumbnailOfAnEmptyFile",
                 {"thumbnail", "{F}/empty.mp4", "--output={T}/t.png"},
                 "Can not open media file: {F}/empty.mp4: " + invalid},
        BadInput{"ProbeOfATruncatedFile",
                 {"probe", "{F}/truncated.mp4"},
                 "Can not open media file: {F}/truncated.mp4: " + invalid},
        BadInput{"ThumbnailOfATruncatedFile",
                 {"thumbnail", "{F}/truncated.mp4", "--output={T}/t.png"},
                 "Can not open media file: {F}/truncated.mp4: " + invalid},
        BadInput{"ThumbnailOfAudioOnly",
                 {"thumbnail", "{F}/tone.wav", "--output={T}/t.png"},
                 "No video stream in {F}/tone.wav"},
        BadInput{"ThumbnailFarPastTheEnd",
                 {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", "--at=90000"},
                 "Time 90000 ms is past the end of {F}/h264_aac.mp4 (2000 ms)"},
        BadInput{"ThumbnailJustPastTheEnd",
                 {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", "--at=2001"},
                 "Time 2001 ms is past the end of {F}/h264_aac.mp4 (2000 ms)"},
        BadInput{"ProbeWithDecodersDisabled",
                 {"--disable-plugin=DecodersFF", "probe", "{F}/h264_aac.mp4"},
                 "Can not read media: the plug-in DecodersFF is disabled"},
        BadInput{
            "ThumbnailWithDecodersDisabled",
            {"--disable-plugin=DecodersFF", "thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png"},
            "Can not read media: the plug-in DecodersFF is disabled"},
        BadInput{
            "ThumbnailWithEncodersDisabled",
            {"--disable-plugin=EncodersFF", "thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png"},
            "Can not encode CODEC_ID_PNG: the plug-in EncodersFF is disabled"},
        BadInput{"ThumbnailIntoAMissingDirectory",
                 {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/no/such/t.png"},
                 "Can not write to {T}/no/such: No such file or directory"},
        BadInput{"ThumbnailOntoADirectory",
                 {"thumbnail", "{F}/h264_aac.mp4", "--output={T}"},
                 "Output file exists: {T}"},
        BadInput{"ThumbnailReplacingADirectory",
                 {"thumbnail", "{F}/h264_aac.mp4", "--output={T}", "--overwrite"},
                 "Can not write {T}: Is a directory"},
        BadInput{"ProbeWithoutAPath",
                 {"probe"},
                 "No media file specified, try --help for all available options"},
        BadInput{"ThumbnailWithoutAnOutput",
                 {"thumbnail", "{F}/h264_aac.mp4"},
                 "No output file specified, try --help for all available options"},
        BadInput{"ThumbnailAtANegativeTime",
                 {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", "--at=-5"},
                 "--at must not be negative, is -5"},
        BadInput{"ThumbnailOfAnEmptyFrameSize",
                 {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", "--preset-frame-size=0:0"},
                 "Frame size must be at least 1:1, is 0:0"}),
    [](const testing::TestParamInfo<BadInput>& info) { return info.param.name; });

BadInput at(const char* name, const char* value, const char* shown) {
    return {
        name,
        {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", QStringLiteral("--at=") + value},
        QStringLiteral("--at must be a whole number of milliseconds, is ") + shown};
}

BadInput exported(const char* name, const char* input, QStringList options, const char* error) {
    return {name,
            QStringList{"export", QStringLiteral("{F}/") + input, "--output={T}/e.mp4"} + options,
            error};
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, MediaBadInputTest,
    testing::Values(at("AFraction", "1.5", "1.5"),
                    at("TwentyDigits", "99999999999999999999", "99999999999999999999"),
                    at("Nothing", "", "\"\""), at("Words", "soon", "soon"),
                    at("TextAfterTheNumber", "15s", "15s"), at("Hexadecimal", "0x10", "0x10"),
                    BadInput{"ANegativeTime",
                             {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", "--at=-5"},
                             "--at must not be negative, is -5"}),
    [](const testing::TestParamInfo<BadInput>& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    EncoderLimits, MediaBadInputTest,
    testing::Values(
        exported("AVideoBitrateOfOne", "h264_aac.mp4", {"--preset-video-bitrate=1"},
                 "Video bitrate must be at least 1000 bps for libx264, is 1"),
        exported("AnAudioBitrateOfOne", "h264_aac.mp4", {"--preset-audio-bitrate=1"},
                 "Audio bitrate must be at least 1000 bps for aac, is 1"),
        exported("AFrameSizeBeyondH264", "h264_aac.mp4", {"--preset-frame-size=16386:16386"},
                 "Frame size must be from 2:2 to 16384:16384 for libx264, is 16386:16386"),
        exported("AFrameSizeBelowHevc", "h264_aac.mp4",
                 {"--preset-video-codec=CODEC_ID_HEVC", "--preset-frame-size=8:8"},
                 "Frame size must be from 16:16 to 16384:16384 for libx265, is 8:8"),
        exported("AnInputOfOnePixel", "one_pixel.mp4", {},
                 "Video size 1:1 of {F}/one_pixel.mp4 is outside what libx264 writes, from 2:2 "
                 "to 16384:16384; choose a size with --preset-frame-size")),
    [](const testing::TestParamInfo<BadInput>& info) { return info.param.name; });

TEST(OnePixelInputTest, ExportsWithAFrameSize) {
    const QTemporaryDir directory;
    const HostRun run =
        runHost({"-q", "export", QString::fromStdString(mediaFixture("one_pixel.mp4")),
                 "--output=" + directory.filePath("e.mp4"), "--preset-frame-size=64:36"});
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
}

} // namespace
