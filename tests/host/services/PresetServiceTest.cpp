#include "host/services/PresetService.h"

#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/presets/PresetsHelp.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using EditorService::Error;

namespace {

std::shared_ptr<Collected> runPreset(QStringList arguments) {
    arguments.prepend(QStringLiteral("app"));
    PresetService service;
    return collectToEnd(service.run(arguments));
}

TEST(PresetServiceTest, IsKnownAsPreset) {
    EXPECT_EQ(PresetService::serviceId(), QStringLiteral("preset"));
}

TEST(PresetServiceTest, WithoutOptionsEmitsTheDefaultPreset) {
    const auto collected = runPreset({});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    const auto& preset = collected->values.front();
    EXPECT_EQ(preset.at("id"), "mp4");
    EXPECT_EQ(preset.at("width"), 0);
    EXPECT_EQ(preset.at("videoCodec"), "CODEC_ID_H264");
}

TEST(PresetServiceTest, AppliesEveryOverride) {
    const auto collected = runPreset(
        {"--preset=mp4", "--preset-video-codec=CODEC_ID_HEVC", "--preset-resize-fill-mode=Center",
         "--preset-frame-size=1280:720", "--preset-video-bitrate=1200000",
         "--preset-audio-bitrate=96000", "--project-size=1920:1080"});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    const auto& preset = collected->values.front();
    EXPECT_EQ(preset.at("videoCodec"), "CODEC_ID_HEVC");
    EXPECT_EQ(preset.at("resizeFillMode"), "Center");
    EXPECT_EQ(preset.at("width"), 1280);
    EXPECT_EQ(preset.at("height"), 720);
    EXPECT_EQ(preset.at("videoBitrateMode"), "Bps");
    EXPECT_EQ(preset.at("videoBitrateBps"), 1200000);
    EXPECT_EQ(preset.at("audioBitrateBps"), 96000);
}

TEST(PresetServiceTest, OriginalFrameSizeTakesTheProjectSize) {
    const auto collected = runPreset({"--preset-frame-size=original", "--project-size=1080:1920"});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_EQ(collected->values.front().at("width"), 1080);
    EXPECT_EQ(collected->values.front().at("height"), 1920);
}

TEST(PresetServiceTest, ProjectOfOddSizeFailsForTheOriginalFrameSize) {
    const auto collected = runPreset({"--preset-frame-size=original", "--project-size=1921:1080"});
    EXPECT_THAT(collected->error, FailedWith<Error>("Frame size must be even."));
    EXPECT_TRUE(collected->values.empty());
    EXPECT_FALSE(collected->completed);
}

TEST(PresetServiceTest, FrameSizeWithoutAProjectIsNotApplied) {
    const auto collected = runPreset({"--preset-frame-size=1281:721"});
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_EQ(collected->values.front().at("width"), 0);
}

TEST(PresetServiceTest, UnknownPresetFailsWithTheAvailableOnes) {
    EXPECT_THAT(
        runPreset({"--preset=4320p"})->error,
        FailedWith<Error>(
            "Unknown preset: 4320p\nAvailable presets:\nmp4\n2160p\n1440p\n1080p\n720p\n480p\n"
            "360p"));
}

TEST(PresetServiceTest, CodecThePresetLacksFails) {
    EXPECT_THAT(runPreset({"--preset=360p", "--preset-video-codec=CODEC_ID_VP9"})->error,
                FailedWith<Error>("Unexpected video codec for preset: CODEC_ID_VP9"));
}

TEST(PresetServiceTest, EveryPresetWritesHevcAsWellAsH264) {
    for (const char* preset : {"mp4", "2160p", "1440p", "1080p", "720p", "480p", "360p"}) {
        for (const char* codec : {"CODEC_ID_H264", "CODEC_ID_HEVC"}) {
            const auto collected =
                runPreset({QStringLiteral("--preset=%1").arg(preset),
                           QStringLiteral("--preset-video-codec=%1").arg(codec)});
            ASSERT_EQ(collected->values.size(), 1u)
                << preset << " " << codec << ": " << failureText(collected->error);
            EXPECT_EQ(collected->values.front().at("videoCodec"), codec) << preset;
        }
    }
}

TEST(PresetServiceTest, HelpEndsWithThePresetsTheDefaultFirst) {
    const auto collected = runPreset({"--help"});
    try {
        std::rethrow_exception(collected->error);
    } catch (const EditorService::CLI::HelpException& help) {
        EXPECT_TRUE(QString::fromUtf8(help.what()).endsWith("\n" + EditorService::presetsHelp()))
            << help.what();
        return;
    } catch (...) {
    }
    FAIL() << "no help: " << failureText(collected->error);
}

TEST(PresetServiceTest, ProjectSizeMustBeTwoNumbers) {
    EXPECT_THAT(runPreset({"--project-size=original"})->error,
                FailedWith<Error>("Project size must be given as width:height"));
    EXPECT_THAT(runPreset({"--project-size=1920"})->error,
                FailedWith<Error>("Can not parse frame size \"1920\", expects \"width:height\""));
}

TEST(PresetServiceTest, RequestRoundTripsThroughCommandLineAndJson) {
    PresetRequest request;
    request.presetContext.preset = QStringLiteral("1080p");
    request.presetContext.frameSize = PresetFrameSize();
    request.presetContext.audioBitrate = 64000;
    request.projectSize = PresetFrameSize(1280, 720);
    PresetRequest::Serializer serializer;
    const QStringList cli = serializer.toCli(request);
    EXPECT_EQ(cli, (QStringList{"--preset=1080p", "--preset-frame-size=",
                                "--preset-audio-bitrate=64000", "--project-size=1280:720"}));
    const nlohmann::json json = serializer.toJson(request);
    EXPECT_EQ(json, (nlohmann::json{{"preset", "1080p"},
                                    {"preset-frame-size", ""},
                                    {"preset-audio-bitrate", 64000},
                                    {"project-size", "1280:720"}}));
    for (const auto& loaded : {serializer.loadFromCli(cli), serializer.loadFromJson(json)}) {
        const auto& typed = dynamic_cast<const PresetRequest&>(*loaded);
        EXPECT_EQ(typed.presetContext.preset, QStringLiteral("1080p"));
        EXPECT_EQ(typed.presetContext.frameSize, PresetFrameSize());
        EXPECT_EQ(typed.presetContext.audioBitrate, 64000);
        EXPECT_FALSE(typed.presetContext.videoBitrate.has_value());
        EXPECT_EQ(typed.projectSize, PresetFrameSize(1280, 720));
    }
}

} // namespace
