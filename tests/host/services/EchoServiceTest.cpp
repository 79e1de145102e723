#include "host/services/EchoService.h"

#include "service/api/HelpException.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;

TEST(EchoServiceTest, EmitsTheArgumentsBehindTheProgramPathUnchanged) {
    EchoService service;
    const auto collected = collectToEnd(service.run(QStringList{"app", "a", "b c", "", "--x=1"}));
    ASSERT_EQ(collected->values.size(), 1u);
    EXPECT_EQ(collected->values.at(0), (nlohmann::json{{"echo", {"a", "b c", "", "--x=1"}}}));
    EXPECT_TRUE(collected->completed);
}

TEST(EchoServiceTest, NoArgumentsGiveAnEmptyList) {
    EchoService service;
    const auto collected = collectToEnd(service.run(QStringList{"app"}));
    EXPECT_EQ(collected->values.at(0), (nlohmann::json{{"echo", nlohmann::json::array()}}));
}

TEST(EchoServiceTest, HelpAloneIsHelpAndAmongOthersIsEchoed) {
    EchoService service;
    const auto help = collectToEnd(service.run(QStringList{"app", "--help"}));
    ASSERT_TRUE(help->error);
    EXPECT_THROW(std::rethrow_exception(help->error), EditorService::CLI::HelpException);
    EXPECT_EQ(failureText(help->error).rfind("Usage: reelsmith echo", 0), 0u);
    const auto echoed = collectToEnd(service.run(QStringList{"app", "x", "--help"}));
    EXPECT_EQ(echoed->values.at(0), (nlohmann::json{{"echo", {"x", "--help"}}}));
}

TEST(EchoServiceTest, SerializerRoundTripsBothForms) {
    EchoRequest request;
    request.arguments = QStringList{"a b", "ü", ""};
    const auto serializer = request.serializer();
    const auto fromCli = serializer->loadFromCli(serializer->toCli(request));
    EXPECT_EQ(dynamic_cast<const EchoRequest&>(*fromCli).arguments, request.arguments);
    const nlohmann::json json = serializer->toJson(request);
    EXPECT_EQ(json, (nlohmann::json{{"arguments", {"a b", "ü", ""}}}));
    const auto fromJson = serializer->loadFromJson(json);
    EXPECT_EQ(dynamic_cast<const EchoRequest&>(*fromJson).arguments, request.arguments);
}
