#include "media/ProbeRequest.h"

#include "service/api/Error.h"
#include "tests/media/LoadFailure.h"

#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::ProbeRequest;
using EditorService::Testing::failureOf;

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
    const std::string failure = failureOf([&] { serializer.loadFromCli({"probe", "--help"}); });
    EXPECT_EQ(failure.rfind("HelpException: ", 0), 0u) << failure;
    EXPECT_NE(failure.find("Describe a media file"), std::string::npos) << failure;
    EXPECT_NE(failure.find("--path <path>"), std::string::npos) << failure;
}

TEST(ProbeRequestTest, WithoutAPathTheCommandLineFailsWithError) {
    ProbeRequest::Serializer serializer;
    EXPECT_EQ(failureOf([&] { serializer.loadFromCli({"probe"}); }),
              "Error: No media file specified, try --help for all available options");
    EXPECT_EQ(failureOf([&] {
                  serializer.loadFromCli({"probe", "--path="});
              }),
              "Error: No media file specified, try --help for all available options");
}

TEST(ProbeRequestTest, WithoutAPathTheJsonFormFailsWithError) {
    ProbeRequest::Serializer serializer;
    EXPECT_EQ(failureOf([&] { serializer.loadFromJson(nlohmann::json::object()); }),
              "Error: No media file specified, try --help for all available options");
    EXPECT_EQ(failureOf([&] {
                  serializer.loadFromJson({{"path", ""}});
              }),
              "Error: No media file specified, try --help for all available options");
}

TEST(ProbeRequestTest, ADefaultRequestIsInvalid) {
    EXPECT_EQ(failureOf([] { ProbeRequest().validateOnLoad(); }),
              "Error: No media file specified, try --help for all available options");
}
