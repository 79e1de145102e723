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

// A command line and the one line it must fail with. "{F}" stands for the fixtures' directory,
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
    // Nothing is left where a picture was asked for.
    EXPECT_FALSE(QFile::exists(directory.filePath("t.png")));
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

} // namespace
