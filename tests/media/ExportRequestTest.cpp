#include "media/ExportRequest.h"

#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/presets/PresetsHelp.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::ExportRequest;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;

namespace {

ExportRequest fromCli(const QStringList& arguments) {
    auto loaded = ExportRequest::Serializer().loadFromCli(QStringList{"app"} + arguments);
    return dynamic_cast<const ExportRequest&>(*loaded);
}

ExportRequest fromJson(const nlohmann::json& value) {
    auto loaded = ExportRequest::Serializer().loadFromJson(value);
    return dynamic_cast<const ExportRequest&>(*loaded);
}

std::exception_ptr loadError(const QStringList& arguments) {
    return failureOf([&] { fromCli(arguments); });
}

} // namespace

TEST(ExportRequestTest, ThePathMayStandFirstWithoutItsName) {
    const auto request = fromCli({"in.mp4", "--output=out.mp4"});
    EXPECT_EQ(request.path, "in.mp4");
    EXPECT_EQ(request.output, "out.mp4");
    EXPECT_FALSE(request.range.isValid());
    EXPECT_FALSE(request.overwrite);
    EXPECT_FALSE(request.skipExisting);
}

TEST(ExportRequestTest, ReadsThePresetOptionsRangeAndFlags) {
    const auto request =
        fromCli({"--path=in.mp4", "--output=out.mp4", "--preset=720p",
                 "--preset-video-codec=CODEC_ID_HEVC", "--preset-resize-fill-mode=Fill",
                 "--preset-frame-size=640:360", "--preset-video-bitrate=1000000",
                 "--preset-audio-bitrate=96000", "--range=2000:5000", "--overwrite"});
    EXPECT_EQ(request.presetContext.preset, "720p");
    EXPECT_EQ(request.presetContext.videoCodec, QString("CODEC_ID_HEVC"));
    ASSERT_TRUE(request.presetContext.frameSize);
    EXPECT_EQ(request.presetContext.frameSize->width, 640);
    EXPECT_EQ(request.presetContext.frameSize->height, 360);
    EXPECT_EQ(request.presetContext.videoBitrate, 1000000);
    EXPECT_EQ(request.presetContext.audioBitrate, 96000);
    EXPECT_EQ(request.range, Types::Range(2000, 5000));
    EXPECT_TRUE(request.overwrite);
}

TEST(ExportRequestTest, TheJsonFormUsesTheOptionNames) {
    const auto request = fromJson({{"path", "in.mp4"},
                                   {"output", "out.mp4"},
                                   {"preset", "1080p"},
                                   {"range", "0:1000"},
                                   {"skip-existing", true}});
    EXPECT_EQ(request.path, "in.mp4");
    EXPECT_EQ(request.output, "out.mp4");
    EXPECT_EQ(request.presetContext.preset, "1080p");
    EXPECT_EQ(request.range, Types::Range(0, 1000));
    EXPECT_TRUE(request.skipExisting);
}

TEST(ExportRequestTest, ARequestWrittenToTheCommandLineReadsBackTheSame) {
    const auto request = fromCli(
        {"in.mp4", "--output=out.mp4", "--preset=480p", "--range=100:900", "--skip-existing"});
    const QStringList written = ExportRequest::Serializer().toCli(request);
    const auto again =
        dynamic_cast<const ExportRequest&>(*ExportRequest::Serializer().loadFromCli(written));
    EXPECT_EQ(again.path, request.path);
    EXPECT_EQ(again.output, request.output);
    EXPECT_EQ(again.presetContext.preset, request.presetContext.preset);
    EXPECT_EQ(again.range, request.range);
    EXPECT_EQ(again.skipExisting, request.skipExisting);
}

TEST(ExportRequestTest, WithoutAnInputItFailsNamingTheMissingFile) {
    EXPECT_THAT(loadError({"--output=out.mp4"}),
                FailedWith<Error>("No media file specified, try --help for all available options"));
}

TEST(ExportRequestTest, WithoutAnOutputItFailsNamingTheMissingOutput) {
    EXPECT_THAT(
        loadError({"in.mp4"}),
        FailedWith<Error>("No output file specified, try --help for all available options"));
}

TEST(ExportRequestTest, ARangeThatEndsBeforeItStartsFails) {
    EXPECT_THAT(loadError({"in.mp4", "--output=out.mp4", "--range=5000:2000"}),
                FailedWith<Error>("--range must end after it starts, is 5000:2000"));
}

TEST(ExportRequestTest, ARangeThatIsNoRangeFailsWithTheFormsWords) {
    EXPECT_THAT(loadError({"in.mp4", "--output=out.mp4", "--range=soon"}),
                FailedWith<Error>("Can not parse range \"soon\", expects \"ms:ms\""));
}

TEST(ExportRequestTest, OverwriteAndSkipExistingTogetherFail) {
    EXPECT_THAT(loadError({"in.mp4", "--output=out.mp4", "--overwrite", "--skip-existing"}),
                FailedWith<Error>("--overwrite and --skip-existing can not be given together"));
}

TEST(ExportRequestTest, HelpEndsWithThePresetsTheDefaultFirst) {
    EXPECT_EQ(ExportRequest().additionalHelp(), EditorService::presetsHelp());
    try {
        fromCli({"--help"});
        FAIL() << "no help";
    } catch (const EditorService::CLI::HelpException& help) {
        EXPECT_TRUE(QString::fromUtf8(help.what()).endsWith("\n" + EditorService::presetsHelp()))
            << help.what();
    }
}
