#include "media/ThumbnailRequest.h"

#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::ThumbnailRequest;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::failureText;
using Velmor::Proc::SettingsResizer;

namespace {

const ThumbnailRequest& thumbnail(const std::unique_ptr<EditorService::Request>& request) {
    return dynamic_cast<const ThumbnailRequest&>(*request);
}

std::exception_ptr fromCli(QStringList arguments) {
    arguments.prepend(QStringLiteral("thumbnail"));
    return failureOf([&] { ThumbnailRequest::Serializer().loadFromCli(arguments); });
}

std::exception_ptr fromJson(const nlohmann::json& value) {
    return failureOf([&] { ThumbnailRequest::Serializer().loadFromJson(value); });
}

} // namespace

TEST(ThumbnailRequestTest, OptionsHaveTheirNamesValueNamesAndDefaults) {
    EXPECT_EQ(ThumbnailRequest::pathOption().names(), QStringList{"path"});
    EXPECT_EQ(ThumbnailRequest::outputOption().names(), QStringList{"output"});
    EXPECT_EQ(ThumbnailRequest::outputOption().valueName(), "file.png");
    EXPECT_EQ(ThumbnailRequest::atOption().names(), QStringList{"at"});
    EXPECT_EQ(ThumbnailRequest::atOption().valueName(), "ms");
    EXPECT_EQ(ThumbnailRequest::atOption().defaultValues(), QStringList{"0"});
}

TEST(ThumbnailRequestTest, TheCommandLineGivesEveryField) {
    ThumbnailRequest::Serializer serializer;
    const auto request =
        serializer.loadFromCli({"thumbnail", "clip.mp4", "--output=t.png", "--at=1500",
                                "--preset-frame-size=160:90", "--preset-resize-fill-mode=Fill"});
    const auto& loaded = thumbnail(request);
    EXPECT_EQ(loaded.path, "clip.mp4");
    EXPECT_EQ(loaded.output, "t.png");
    EXPECT_EQ(loaded.at, 1500);
    ASSERT_TRUE(loaded.frameSize);
    EXPECT_EQ(*loaded.frameSize, PresetFrameSize(160, 90));
    EXPECT_EQ(loaded.resizeFillMode, SettingsResizer::Fill);
}

TEST(ThumbnailRequestTest, WithoutOptionalFieldsTheTimeIsZeroAndSizeAndModeAreUnset) {
    const auto request =
        ThumbnailRequest::Serializer().loadFromCli({"thumbnail", "clip.mp4", "--output=t.png"});
    const auto& loaded = thumbnail(request);
    EXPECT_EQ(loaded.at, 0);
    EXPECT_FALSE(loaded.frameSize);
    EXPECT_FALSE(loaded.resizeFillMode);
}

TEST(ThumbnailRequestTest, TheOriginalFrameSizeIsAccepted) {
    const auto request = ThumbnailRequest::Serializer().loadFromCli(
        {"thumbnail", "clip.mp4", "--output=t.png", "--preset-frame-size=original"});
    ASSERT_TRUE(thumbnail(request).frameSize);
    EXPECT_TRUE(thumbnail(request).frameSize->isOriginal());
}

TEST(ThumbnailRequestTest, AnOddFrameSizeIsAcceptedForAPicture) {
    const auto request = ThumbnailRequest::Serializer().loadFromCli(
        {"thumbnail", "clip.mp4", "--output=t.png", "--preset-frame-size=1:1"});
    EXPECT_EQ(*thumbnail(request).frameSize, PresetFrameSize(1, 1));
}

TEST(ThumbnailRequestTest, TheJsonFormHasTheFieldsUnderTheOptionNames) {
    ThumbnailRequest::Serializer serializer;
    const nlohmann::json json{{"path", "clip.mp4"},
                              {"output", "t.png"},
                              {"at", 1500},
                              {"preset-frame-size", "160:90"},
                              {"preset-resize-fill-mode", "Center"},
                              {"overwrite", true},
                              {"skip-existing", false}};
    const auto request = serializer.loadFromJson(json);
    const auto& loaded = thumbnail(request);
    EXPECT_EQ(loaded.path, "clip.mp4");
    EXPECT_EQ(loaded.output, "t.png");
    EXPECT_EQ(loaded.at, 1500);
    EXPECT_EQ(*loaded.frameSize, PresetFrameSize(160, 90));
    EXPECT_EQ(loaded.resizeFillMode, SettingsResizer::Center);
    EXPECT_TRUE(loaded.overwrite);
    EXPECT_FALSE(loaded.skipExisting);
    EXPECT_EQ(serializer.toJson(*request), json);
}

TEST(ThumbnailRequestTest, BothFormsRoundTrip) {
    ThumbnailRequest::Serializer serializer;
    const auto request = serializer.loadFromCli(
        {"thumbnail", "dir/a b.mp4", "--output=o.png", "--at=42", "--preset-frame-size=320:240",
         "--preset-resize-fill-mode=FitWidth", "--skip-existing"});
    for (const auto& again : {serializer.loadFromCli(serializer.toCli(*request)),
                              serializer.loadFromJson(serializer.toJson(*request))}) {
        const auto& loaded = thumbnail(again);
        EXPECT_EQ(loaded.path, "dir/a b.mp4");
        EXPECT_EQ(loaded.output, "o.png");
        EXPECT_EQ(loaded.at, 42);
        EXPECT_EQ(*loaded.frameSize, PresetFrameSize(320, 240));
        EXPECT_EQ(loaded.resizeFillMode, SettingsResizer::FitWidth);
        EXPECT_FALSE(loaded.overwrite);
        EXPECT_TRUE(loaded.skipExisting);
    }
}

TEST(ThumbnailRequestTest, HelpDescribesTheServiceAndEveryOption) {
    const auto failure = fromCli({"--help"});
    ASSERT_TRUE(failure);
    EXPECT_THROW(std::rethrow_exception(failure), EditorService::CLI::HelpException);
    const std::string help = failureText(failure);
    for (const char* expected :
         {"Write the frame on screen at a time of a video as a PNG or JPEG picture",
          "--path <path>", "--output <file.png>", "--at <ms>", "--preset-frame-size",
          "--preset-resize-fill-mode", "--overwrite", "--skip-existing"})
        EXPECT_NE(help.find(expected), std::string::npos) << expected;
}

TEST(ThumbnailRequestTest, WithoutAPathLoadingFailsWithError) {
    EXPECT_THAT(fromCli({"--output=t.png"}),
                FailedWith<Error>("No media file specified, try --help for all available options"));
    EXPECT_THAT(fromJson({{"output", "t.png"}}),
                FailedWith<Error>("No media file specified, try --help for all available options"));
}

TEST(ThumbnailRequestTest, WithoutAnOutputLoadingFailsWithError) {
    EXPECT_THAT(
        fromCli({"clip.mp4"}),
        FailedWith<Error>("No output file specified, try --help for all available options"));
    EXPECT_THAT(
        fromCli({"clip.mp4", "--output="}),
        FailedWith<Error>("No output file specified, try --help for all available options"));
    EXPECT_THAT(
        fromJson({{"path", "clip.mp4"}}),
        FailedWith<Error>("No output file specified, try --help for all available options"));
}

TEST(ThumbnailRequestTest, ANegativeTimeFailsWithError) {
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--at=-5"}),
                FailedWith<Error>("--at must not be negative, is -5"));
    EXPECT_THAT(fromJson({{"path", "clip.mp4"}, {"output", "t.png"}, {"at", -5}}),
                FailedWith<Error>("--at must not be negative, is -5"));
}

TEST(ThumbnailRequestTest, AnEmptyFrameSizeFailsWithError) {
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--preset-frame-size=0:0"}),
                FailedWith<Error>("Frame size must be at least 1:1, is 0:0"));
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--preset-frame-size=160:0"}),
                FailedWith<Error>("Frame size must be at least 1:1, is 160:0"));
    EXPECT_THAT(fromJson({{"path", "clip.mp4"}, {"output", "t.png"}, {"preset-frame-size", "0:0"}}),
                FailedWith<Error>("Frame size must be at least 1:1, is 0:0"));
}

TEST(ThumbnailRequestTest, AFrameSizeThatDoesNotParseFailsWithThePresetOptionsText) {
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--preset-frame-size=abc"}),
                FailedWith<Error>("Can not parse frame size \"abc\", expects \"width:height\""));
    EXPECT_THAT(fromJson({{"path", "clip.mp4"}, {"output", "t.png"}, {"preset-frame-size", "1x1"}}),
                FailedWith<Error>("Can not parse frame size \"1x1\", expects \"width:height\""));
}

TEST(ThumbnailRequestTest, AnUnknownFillModeFailsWithThePresetOptionsText) {
    const auto expected =
        FailedWith<Error>("Can not parse preset resize mode \"fit\", expects one of "
                          "Fit,Fill,Stretch,FitWidth,FitHeight,Center");
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--preset-resize-fill-mode=fit"}), expected);
    EXPECT_THAT(
        fromJson({{"path", "clip.mp4"}, {"output", "t.png"}, {"preset-resize-fill-mode", "fit"}}),
        expected);
}

TEST(ThumbnailRequestTest, ATimeThatIsNoNumberFailsToParse) {
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--at=abc"}),
                FailedWith<Error>("--at must be a whole number of milliseconds, is abc"));
}

TEST(ThumbnailRequestTest, AnExistingOutputFailsUnlessOneOfTheTwoChoicesIsGiven) {
    const auto request =
        ThumbnailRequest::Serializer().loadFromCli({"thumbnail", "clip.mp4", "--output=t.png"});
    EXPECT_FALSE(thumbnail(request).overwrite);
    EXPECT_FALSE(thumbnail(request).skipExisting);
}

TEST(ThumbnailRequestTest, OverwriteAndSkipExistingTogetherFailWithError) {
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--overwrite", "--skip-existing"}),
                FailedWith<Error>("--overwrite and --skip-existing can not be given together"));
    EXPECT_THAT(fromJson({{"path", "clip.mp4"},
                          {"output", "t.png"},
                          {"overwrite", true},
                          {"skip-existing", true}}),
                FailedWith<Error>("--overwrite and --skip-existing can not be given together"));
}

TEST(ThumbnailRequestTest, ADefaultRequestIsInvalid) {
    EXPECT_THAT([] { ThumbnailRequest().validateOnLoad(); },
                FailedWith<Error>("No media file specified, try --help for all available options"));
}

TEST(ThumbnailRequestTest, AnAtThatIsNoWholeNumberFailsWithTheOptionAndTheValue) {
    for (const char* text : {"1.5", "99999999999999999999", "15s", "0x10", " 5", "soon"}) {
        SCOPED_TRACE(text);
        EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", QStringLiteral("--at=") + text}),
                    FailedWith<Error>(
                        std::string("--at must be a whole number of milliseconds, is ") + text));
    }
    EXPECT_THAT(fromCli({"clip.mp4", "--output=t.png", "--at="}),
                FailedWith<Error>("--at must be a whole number of milliseconds, is \"\""));
}

TEST(ThumbnailRequestTest, AJsonAtIsAWholeNumberOrItsText) {
    for (const nlohmann::json& at : {nlohmann::json(1500), nlohmann::json("1500")}) {
        ThumbnailRequest::Serializer serializer;
        const auto request =
            serializer.loadFromJson({{"path", "clip.mp4"}, {"output", "t.png"}, {"at", at}});
        EXPECT_EQ(thumbnail(request).at, 1500);
    }
    EXPECT_THAT(fromJson({{"path", "clip.mp4"}, {"output", "t.png"}, {"at", 1.5}}),
                FailedWith<Error>("--at must be a whole number of milliseconds, is 1.5"));
    EXPECT_THAT(
        fromJson({{"path", "clip.mp4"}, {"output", "t.png"}, {"at", 18446744073709551615u}}),
        FailedWith<Error>("--at must be a whole number of milliseconds, is "
                          "18446744073709551615"));
}
