#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::runHost;

// Values checked where they enter: a number that is no whole number in range, and a preset value
// outside what its encoder takes, each fail with the option or value and the limit, before
// anything is decoded or encoded, and leave no file.
namespace {

struct BadValue {
    const char* name;
    QStringList arguments;
    QString error;
};

class ValueCheckTest : public testing::TestWithParam<BadValue> {
protected:
    QString expanded(QString text) const {
        const QString fixtures = QFileInfo(QString::fromStdString(mediaFixture("x"))).path();
        return text.replace("{F}", fixtures).replace("{T}", directory.path());
    }

    QTemporaryDir directory;
};

TEST_P(ValueCheckTest, FailsWithTheValueAndItsLimitAndLeavesNoFile) {
    QStringList arguments{"-q"};
    for (const QString& argument : GetParam().arguments)
        arguments.append(expanded(argument));
    const HostRun run = runHost(arguments);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors),
              QList<QByteArray>{expanded(GetParam().error).toUtf8()})
        << run.errors.toStdString();
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
}

BadValue at(const char* name, const char* value, const char* shown) {
    return {
        name,
        {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", QStringLiteral("--at=") + value},
        QStringLiteral("--at must be a whole number of milliseconds, is ") + shown};
}

BadValue exported(const char* name, const char* input, QStringList options, const char* error) {
    return {name,
            QStringList{"export", QStringLiteral("{F}/") + input, "--output={T}/e.mp4"} + options,
            error};
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, ValueCheckTest,
    testing::Values(at("AFraction", "1.5", "1.5"),
                    at("TwentyDigits", "99999999999999999999", "99999999999999999999"),
                    at("Nothing", "", "\"\""), at("Words", "soon", "soon"),
                    at("TextAfterTheNumber", "15s", "15s"), at("Hexadecimal", "0x10", "0x10"),
                    BadValue{"ANegativeTime",
                             {"thumbnail", "{F}/h264_aac.mp4", "--output={T}/t.png", "--at=-5"},
                             "--at must not be negative, is -5"}),
    [](const testing::TestParamInfo<BadValue>& info) { return info.param.name; });

INSTANTIATE_TEST_SUITE_P(
    EncoderLimits, ValueCheckTest,
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
    [](const testing::TestParamInfo<BadValue>& info) { return info.param.name; });

TEST(ValueCheckTest, AnInputOfOnePixelExportsWithAFrameSize) {
    const QTemporaryDir directory;
    const HostRun run =
        runHost({"-q", "export", QString::fromStdString(mediaFixture("one_pixel.mp4")),
                 "--output=" + directory.filePath("e.mp4"), "--preset-frame-size=64:36"});
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
}

} // namespace
