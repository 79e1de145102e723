#include "service/presets/PresetContext.h"

#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/requests/OptionDumper.h"
#include "tests/service/presets/PresetRequest.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Error;
using EditorService::PresetContext;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::failureText;
using EditorService::Testing::PresetRequest;
using Velmor::Proc::SettingsResizer;

namespace {

PresetContext fullContext() {
    PresetContext context;
    context.preset = QStringLiteral("1080p");
    context.videoCodec = QStringLiteral("CODEC_ID_HEVC");
    context.frameSize = PresetFrameSize(1280, 720);
    context.resizeFillMode = SettingsResizer::Fill;
    context.videoBitrate = 1200000;
    context.audioBitrate = 320000;
    return context;
}

void expectSameFields(const PresetContext& actual, const PresetContext& expected) {
    EXPECT_EQ(actual.preset, expected.preset);
    EXPECT_EQ(actual.videoCodec, expected.videoCodec);
    EXPECT_EQ(actual.frameSize, expected.frameSize);
    EXPECT_EQ(actual.resizeFillMode, expected.resizeFillMode);
    EXPECT_EQ(actual.videoBitrate, expected.videoBitrate);
    EXPECT_EQ(actual.audioBitrate, expected.audioBitrate);
}

PresetContext fromCli(const QStringList& arguments) {
    const auto request = PresetRequest::Serializer().loadFromCli(arguments);
    return dynamic_cast<const PresetRequest&>(*request).presetContext;
}

PresetContext fromJson(const nlohmann::json& value) {
    const auto request = PresetRequest::Serializer().loadFromJson(value);
    return dynamic_cast<const PresetRequest&>(*request).presetContext;
}

PresetRequest requestOf(const PresetContext& context) {
    PresetRequest request;
    request.presetContext = context;
    return request;
}

std::exception_ptr cliFailure(const QStringList& arguments) {
    return failureOf([&] { fromCli(arguments); });
}

TEST(PresetContextSerializationTest, OptionsAreTheSixInTheirOrder) {
    EditorService::CLI::OptionDumper dumper;
    dumper << PresetRequest();
    ASSERT_EQ(dumper.options.size(), 6);
    for (int number = 0; number < 6; ++number) {
        EXPECT_EQ(dumper.options.at(number).names(),
                  PresetContext::option(static_cast<PresetContext::Option>(number)).names());
    }
}

TEST(PresetContextSerializationTest, EmptyCommandLineGivesTheDefaultContext) {
    expectSameFields(fromCli({}), PresetContext());
}

TEST(PresetContextSerializationTest, CommandLineFillsEveryField) {
    expectSameFields(fromCli({"--preset=1080p", "--preset-video-codec", "CODEC_ID_HEVC",
                              "--preset-resize-fill-mode=Fill", "--preset-frame-size=1280:720",
                              "--preset-video-bitrate=1200000", "--preset-audio-bitrate=320000"}),
                     fullContext());
}

TEST(PresetContextSerializationTest, FullContextIsWrittenUnderTheOptionNames) {
    EXPECT_EQ(PresetRequest::Serializer().toCli(requestOf(fullContext())),
              (QStringList{"--preset=1080p", "--preset-video-codec=CODEC_ID_HEVC",
                           "--preset-resize-fill-mode=Fill", "--preset-frame-size=1280:720",
                           "--preset-video-bitrate=1200000", "--preset-audio-bitrate=320000"}));
}

TEST(PresetContextSerializationTest, EmptyOverridesAreLeftOut) {
    EXPECT_EQ(PresetRequest::Serializer().toCli(PresetRequest()), QStringList{"--preset=mp4"});
    EXPECT_EQ(PresetRequest::Serializer().toJson(PresetRequest()),
              (nlohmann::json{{"preset", "mp4"}}));
}

TEST(PresetContextSerializationTest, OriginalFrameSizeIsAPresentOverride) {
    const PresetContext context = fromCli({"--preset-frame-size=original"});
    ASSERT_TRUE(context.frameSize.has_value());
    EXPECT_TRUE(context.frameSize->isOriginal());
    const QStringList written = PresetRequest::Serializer().toCli(requestOf(context));
    EXPECT_EQ(written, (QStringList{"--preset=mp4", "--preset-frame-size="}));
    const PresetContext readBack = fromCli(written);
    ASSERT_TRUE(readBack.frameSize.has_value());
    EXPECT_TRUE(readBack.frameSize->isOriginal());
}

TEST(PresetContextSerializationTest, CommandLineRoundTripKeepsEveryField) {
    const QStringList written = PresetRequest::Serializer().toCli(requestOf(fullContext()));
    expectSameFields(fromCli(written), fullContext());
}

TEST(PresetContextSerializationTest, JsonFormIsFlatUnderTheOptionNames) {
    EXPECT_EQ(PresetRequest::Serializer().toJson(requestOf(fullContext())),
              (nlohmann::json{{"preset", "1080p"},
                              {"preset-video-codec", "CODEC_ID_HEVC"},
                              {"preset-resize-fill-mode", "Fill"},
                              {"preset-frame-size", "1280:720"},
                              {"preset-video-bitrate", 1200000},
                              {"preset-audio-bitrate", 320000}}));
}

TEST(PresetContextSerializationTest, JsonRoundTripKeepsEveryField) {
    expectSameFields(fromJson(PresetRequest::Serializer().toJson(requestOf(fullContext()))),
                     fullContext());
    PresetContext original;
    original.frameSize = PresetFrameSize();
    const PresetContext readBack =
        fromJson(PresetRequest::Serializer().toJson(requestOf(original)));
    ASSERT_TRUE(readBack.frameSize.has_value());
    EXPECT_TRUE(readBack.frameSize->isOriginal());
}

TEST(PresetContextSerializationTest, EmptyJsonGivesTheDefaultContext) {
    expectSameFields(fromJson(nlohmann::json::object()), PresetContext());
    expectSameFields(fromJson(nlohmann::json{{"preset-frame-size", nullptr}}), PresetContext());
}

TEST(PresetContextSerializationTest, UnreadableFrameSizeFailsWithItsOwnMessage) {
    EXPECT_THAT(
        cliFailure({"--preset-frame-size=1920x1080"}),
        FailedWith<Error>("Can not parse frame size \"1920x1080\", expects \"width:height\""));
}

TEST(PresetContextSerializationTest, UnknownResizeModeFailsWithTheModeList) {
    EXPECT_THAT(cliFailure({"--preset-resize-fill-mode=fit"}),
                FailedWith<Error>("Can not parse preset resize mode \"fit\", expects one of "
                                  "Fit,Fill,Stretch,FitWidth,FitHeight,Center"));
    EXPECT_THAT(cliFailure({"--preset-resize-fill-mode="}),
                FailedWith<Error>("Can not parse preset resize mode \"\", expects one of "
                                  "Fit,Fill,Stretch,FitWidth,FitHeight,Center"));
}

TEST(PresetContextSerializationTest, UnreadableBitrateFailsAsANumber) {
    EXPECT_THAT(cliFailure({"--preset-video-bitrate=fast"}),
                FailedWith<std::runtime_error>("Can not parse \"fast\" as long long"));
}

TEST(PresetContextSerializationTest, JsonOfTheWrongKindIsRefused) {
    EXPECT_THROW(fromJson(nlohmann::json{{"preset-frame-size", 1080}}), nlohmann::json::type_error);
    EXPECT_THROW(fromJson(nlohmann::json{{"preset-resize-fill-mode", 2}}),
                 nlohmann::json::type_error);
    EXPECT_THAT(
        [&] {
            fromJson(nlohmann::json{{"preset-resize-fill-mode", "Letterbox"}});
        },
        FailedWith<Error>("Can not parse preset resize mode \"Letterbox\", expects one "
                          "of Fit,Fill,Stretch,FitWidth,FitHeight,Center"));
}

TEST(PresetContextSerializationTest, HelpListsTheOptions) {
    const auto failure = cliFailure({"--help"});
    ASSERT_TRUE(failure);
    EXPECT_THROW(std::rethrow_exception(failure), EditorService::CLI::HelpException);
    const std::string help = failureText(failure);
    EXPECT_NE(help.find("--preset-resize-fill-mode <preset-resize-mode>"), std::string::npos);
    EXPECT_NE(help.find("--preset-frame-size <original|<width>:<height>>"), std::string::npos);
    EXPECT_NE(help.find("--preset-video-bitrate <Bitrate in bps>"), std::string::npos);
}

} // namespace
