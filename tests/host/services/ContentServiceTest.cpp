#include "host/services/ContentService.h"
#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;

namespace {

TEST(ContentServiceTest, IsKnownAsContent) {
    EXPECT_EQ(ContentService::serviceId(), QStringLiteral("content"));
}

TEST(ContentServiceTest, TheKindMayStandFirstOrAsAnOption) {
    ContentRequest::Serializer serializer;
    const auto first = serializer.loadFromCli({"app", "themes"});
    EXPECT_EQ(dynamic_cast<const ContentRequest&>(*first).kind, "themes");
    const auto named = serializer.loadFromCli({"app", "--kind=overlays"});
    EXPECT_EQ(dynamic_cast<const ContentRequest&>(*named).kind, "overlays");
    const auto json = serializer.loadFromJson({{"kind", "pan-zoom"}});
    EXPECT_EQ(dynamic_cast<const ContentRequest&>(*json).kind, "pan-zoom");
}

TEST(ContentServiceTest, AnUnknownOrMissingKindIsRefused) {
    ContentRequest::Serializer serializer;
    EXPECT_THAT(
        [&] {
            serializer.loadFromCli({"app", "effects"});
        },
        FailedWith<EditorService::Error>("Unknown content \"effects\", expects "
                                         "transitions, pan-zoom, overlays or themes"));
    EXPECT_THAT([&] { serializer.loadFromCli({"app"}); },
                FailedWith<EditorService::Error>("No content kind specified, expects "
                                                 "transitions, pan-zoom, overlays or themes"));
}

TEST(ContentServiceTest, EmitsOneValuePerTransitionAndCompletes) {
    ContentService service;
    const auto collected = collectToEnd(service.run(QStringList{"app", "transitions"}));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    ASSERT_EQ(collected->values.size(), 14u);
    EXPECT_EQ(collected->values[1],
              (nlohmann::json{
                  {"transition",
                   {{"name", "fade-black"}, {"description", "Fades to black, then out of it"}}}}));
}

TEST(ContentServiceTest, HelpStopsTheRequest) {
    ContentService service;
    const auto collected = collectToEnd(service.run(QStringList{"app", "--help"}));
    ASSERT_TRUE(collected->error);
    EXPECT_THROW(std::rethrow_exception(collected->error), EditorService::CLI::HelpException);
}

} // namespace
