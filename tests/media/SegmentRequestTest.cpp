#include "media/SegmentRequest.h"

#include "service/api/Error.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::SegmentRequest;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;

namespace {

SegmentRequest fromCli(const QStringList& arguments) {
    auto loaded = SegmentRequest::Serializer().loadFromCli(QStringList{"app"} + arguments);
    return dynamic_cast<const SegmentRequest&>(*loaded);
}

std::exception_ptr loadError(const QStringList& arguments) {
    return failureOf([&] { fromCli(arguments); });
}

} // namespace

TEST(SegmentRequestTest, ReadsThePartTheFolderAndThePresetOptions) {
    const auto request = fromCli({"in.mp4", "--index=2", "--count=4", "--output=parts",
                                  "--preset=720p", "--range=1000:9000", "--skip-existing"});
    EXPECT_EQ(request.path, "in.mp4");
    EXPECT_EQ(request.videoIndex(), 2);
    EXPECT_FALSE(request.isAudio());
    EXPECT_EQ(request.count, 4);
    EXPECT_EQ(request.output, "parts");
    EXPECT_EQ(request.presetContext.preset, "720p");
    EXPECT_EQ(request.range, Types::Range(1000, 9000));
    EXPECT_TRUE(request.skipExisting);
}

TEST(SegmentRequestTest, TheAudioPartIsNamedAudio) {
    const auto request = fromCli({"in.mp4", "--index=audio", "--count=4", "--output=parts"});
    EXPECT_TRUE(request.isAudio());
    EXPECT_EQ(request.videoIndex(), 0);
}

TEST(SegmentRequestTest, WithoutAnInputItFailsNamingTheMissingFile) {
    EXPECT_THAT(loadError({"--output=parts"}),
                FailedWith<Error>("No media file specified, try --help for all available options"));
}

TEST(SegmentRequestTest, WithoutAFolderItFailsNamingTheMissingFolder) {
    EXPECT_THAT(
        loadError({"in.mp4"}),
        FailedWith<Error>("No output folder specified, try --help for all available options"));
}

TEST(SegmentRequestTest, ACountBelowOneFails) {
    EXPECT_THAT(loadError({"in.mp4", "--output=parts", "--count=0"}),
                FailedWith<Error>("--count must be at least 1"));
}

TEST(SegmentRequestTest, AnIndexOutsideTheCountOrNoNumberFails) {
    for (const QString index : {"4", "-1", "first"}) {
        EXPECT_THAT(loadError({"in.mp4", "--output=parts", "--count=4", "--index=" + index}),
                    FailedWith<Error>("--index must be between 0 and 3 or audio"))
            << index.toStdString();
    }
}

TEST(SegmentRequestTest, ARangeThatEndsBeforeItStartsFails) {
    EXPECT_THAT(loadError({"in.mp4", "--output=parts", "--range=5000:2000"}),
                FailedWith<Error>("--range must end after it starts, is 5000:2000"));
}

TEST(SegmentRequestTest, OverwriteAndSkipExistingTogetherFail) {
    EXPECT_THAT(loadError({"in.mp4", "--output=parts", "--overwrite", "--skip-existing"}),
                FailedWith<Error>("--overwrite and --skip-existing can not be given together"));
}
