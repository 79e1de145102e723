#include "media/ProbeRequest.h"

#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::ProbeRequest;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::failureText;

namespace {

const ProbeRequest& probe(const std::unique_ptr<EditorService::Request>& request) {
    return dynamic_cast<const ProbeRequest&>(*request);
}

} // namespace

TEST(ProbeRequestTest, PathOptionHasItsNameAndValueName) {
    const auto option = ProbeRequest::pathOption();
    EXPECT_EQ(option.names(), QStringList{"path"});
    EXPECT_EQ(option.valueName(), "path");
    EXPECT_TRUE(option.defaultValues().isEmpty());
}

TEST(ProbeRequestTest, ThePathStandsFirstOnTheCommandLine) {
    ProbeRequest::Serializer serializer;
    EXPECT_EQ(probe(serializer.loadFromCli({"probe", "clip.mp4"})).path, "clip.mp4");
}

TEST(ProbeRequestTest, ThePathMayBeGivenByItsOptionName) {
    ProbeRequest::Serializer serializer;
    EXPECT_EQ(probe(serializer.loadFromCli({"probe", "--path=a b.mp4"})).path, "a b.mp4");
    EXPECT_EQ(probe(serializer.loadFromCli({"probe", "--path", "c.mkv"})).path, "c.mkv");
}

TEST(ProbeRequestTest, TheJsonFormIsThePathUnderTheOptionName) {
    ProbeRequest::Serializer serializer;
    const auto request = serializer.loadFromJson({{"path", "clip.mp4"}});
    EXPECT_EQ(probe(request).path, "clip.mp4");
    EXPECT_EQ(serializer.toJson(*request), nlohmann::json({{"path", "clip.mp4"}}));
}

TEST(ProbeRequestTest, TheCommandLineFormRoundTrips) {
    ProbeRequest::Serializer serializer;
    const auto request = serializer.loadFromCli({"probe", "dir/clip 1.mp4"});
    const QStringList cli = serializer.toCli(*request);
    EXPECT_EQ(cli, QStringList{"--path=dir/clip 1.mp4"});
    EXPECT_EQ(probe(serializer.loadFromCli(cli)).path, "dir/clip 1.mp4");
    EXPECT_EQ(probe(serializer.loadFromJson(serializer.toJson(*request))).path, "dir/clip 1.mp4");
}

TEST(ProbeRequestTest, HelpDescribesTheServiceAndItsPathOption) {
    ProbeRequest::Serializer serializer;
    const auto failure = failureOf([&] { serializer.loadFromCli({"probe", "--help"}); });
    ASSERT_TRUE(failure);
    EXPECT_THROW(std::rethrow_exception(failure), EditorService::CLI::HelpException);
    const std::string help = failureText(failure);
    EXPECT_NE(help.find("Describe a media file"), std::string::npos) << help;
    EXPECT_NE(help.find("--path <path>"), std::string::npos) << help;
}

TEST(ProbeRequestTest, WithoutAPathTheCommandLineFailsWithError) {
    ProbeRequest::Serializer serializer;
    const auto noPath =
        FailedWith<Error>("No media file specified, try --help for all available options");
    EXPECT_THAT([&] { serializer.loadFromCli({"probe"}); }, noPath);
    EXPECT_THAT([&] { serializer.loadFromCli({"probe", "--path="}); }, noPath);
}

TEST(ProbeRequestTest, WithoutAPathTheJsonFormFailsWithError) {
    ProbeRequest::Serializer serializer;
    const auto noPath =
        FailedWith<Error>("No media file specified, try --help for all available options");
    EXPECT_THAT([&] { serializer.loadFromJson(nlohmann::json::object()); }, noPath);
    EXPECT_THAT([&] { serializer.loadFromJson({{"path", ""}}); }, noPath);
}

TEST(ProbeRequestTest, ADefaultRequestIsInvalid) {
    EXPECT_THAT([] { ProbeRequest().validateOnLoad(); },
                FailedWith<Error>("No media file specified, try --help for all available options"));
}
