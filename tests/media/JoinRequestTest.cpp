#include "media/JoinRequest.h"

#include "service/api/Error.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::JoinRequest;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;

namespace {

JoinRequest fromCli(const QStringList& arguments) {
    auto loaded = JoinRequest::Serializer().loadFromCli(QStringList{"app"} + arguments);
    return dynamic_cast<const JoinRequest&>(*loaded);
}

std::exception_ptr loadError(const QStringList& arguments) {
    return failureOf([&] { fromCli(arguments); });
}

} // namespace

TEST(JoinRequestTest, TheFolderMayStandFirstWithoutItsName) {
    const auto request = fromCli({"parts", "--output=out.mp4", "--overwrite"});
    EXPECT_EQ(request.path, "parts");
    EXPECT_EQ(request.output, "out.mp4");
    EXPECT_TRUE(request.overwrite);
    EXPECT_FALSE(request.skipExisting);
}

TEST(JoinRequestTest, WithoutAFolderItFailsNamingTheMissingFolder) {
    EXPECT_THAT(
        loadError({"--output=out.mp4"}),
        FailedWith<Error>("No segment folder specified, try --help for all available options"));
}

TEST(JoinRequestTest, WithoutAnOutputItFailsNamingTheMissingOutput) {
    EXPECT_THAT(
        loadError({"parts"}),
        FailedWith<Error>("No output file specified, try --help for all available options"));
}

TEST(JoinRequestTest, OverwriteAndSkipExistingTogetherFail) {
    EXPECT_THAT(loadError({"parts", "--output=out.mp4", "--overwrite", "--skip-existing"}),
                FailedWith<Error>("--overwrite and --skip-existing can not be given together"));
}
