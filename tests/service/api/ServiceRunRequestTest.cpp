#include "service/api/ServiceRunRequest.h"

#include "service/api/Error.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using namespace EditorService;

namespace {

const QList<QCommandLineOption> hostOptions{
    QCommandLineOption(QStringList{"timeout", "t"}, "limit", "seconds", "-1"),
    QCommandLineOption(QStringList{"hot-start"}, "flag")};

struct FromCliRow {
    const char* name;
    QStringList commandLine;
    QList<QCommandLineOption> options;
    QString serviceName;
    QStringList arguments;
};

void PrintTo(const FromCliRow& row, std::ostream* stream) {
    *stream << row.name;
}

class ServiceRunRequestFromCliTest : public testing::TestWithParam<FromCliRow> {};

TEST_P(ServiceRunRequestFromCliTest, SplitsServiceNameFromItsArguments) {
    const auto request = ServiceRunRequest::fromCli(GetParam().commandLine, GetParam().options);
    EXPECT_EQ(request.serviceName, GetParam().serviceName);
    EXPECT_EQ(request.arguments, GetParam().arguments);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ServiceRunRequestFromCliTest,
    testing::Values(
        FromCliRow{"NameOnly", {"app", "echo"}, {}, "echo", {"app"}},
        FromCliRow{
            "NameAndArguments", {"app", "echo", "a", "--b=1"}, {}, "echo", {"app", "a", "--b=1"}},
        FromCliRow{"ArgumentsKeepTheirOrderAndText",
                   {"app", "x", "b c", "", "-z"},
                   {},
                   "x",
                   {"app", "b c", "", "-z"}},
        FromCliRow{
            "JoinedOptionBeforeName", {"app", "--timeout=5", "tick"}, hostOptions, "tick", {"app"}},
        FromCliRow{"SeparateValueBeforeName",
                   {"app", "--timeout", "5", "tick", "x"},
                   hostOptions,
                   "tick",
                   {"app", "x"}},
        FromCliRow{
            "ShortOptionWithValue", {"app", "-t", "5", "tick"}, hostOptions, "tick", {"app"}},
        FromCliRow{"CompactShortOption", {"app", "-t5", "tick"}, hostOptions, "tick", {"app"}},
        FromCliRow{"FlagBeforeName", {"app", "--hot-start", "tick"}, hostOptions, "tick", {"app"}},
        FromCliRow{"UnknownOptionIsAFlag", {"app", "--verbose", "tick"}, {}, "tick", {"app"}},
        FromCliRow{"DoubleDashEndsOptions", {"app", "--", "--odd", "x"}, {}, "--odd", {"app", "x"}},
        FromCliRow{"ValueOptionUnknownToTheListTakesNoValue",
                   {"app", "--timeout", "5", "tick"},
                   {},
                   "5",
                   {"app", "tick"}}),
    [](const testing::TestParamInfo<FromCliRow>& info) { return std::string(info.param.name); });

TEST(ServiceRunRequestTest, NoServiceNameThrowsError) {
    for (const QStringList& commandLine :
         {QStringList{}, QStringList{"app"}, QStringList{"app", "--x"}, QStringList{"app", "--"},
          QStringList{"app", "--timeout", "5"}}) {
        EXPECT_THAT([&] { ServiceRunRequest::fromCli(commandLine, hostOptions); },
                    FailedWith<Error>("No service specified"));
    }
}

TEST(ServiceRunRequestTest, CopiesAndMovesKeepTheFields) {
    ServiceRunRequest request(QStringLiteral("echo"), {"app", "x"});
    ServiceRunRequest copy(request);
    ServiceRunRequest moved(std::move(request));
    EXPECT_EQ(copy.serviceName, "echo");
    EXPECT_EQ(moved.arguments, (QStringList{"app", "x"}));
}

TEST(ServiceRunRequestTest, SerializerRoundTripsCommandLineAndJson) {
    const ServiceRunRequest request(QStringLiteral("echo"), {"app", "a b", "--c=1"});
    const auto serializer = request.serializer();
    const QStringList commandLine = serializer->toCli(request);
    EXPECT_EQ(commandLine, (QStringList{"app", "echo", "a b", "--c=1"}));
    const auto fromCli = serializer->loadFromCli(commandLine);
    const auto& loaded = dynamic_cast<const ServiceRunRequest&>(*fromCli);
    EXPECT_EQ(loaded.serviceName, request.serviceName);
    EXPECT_EQ(loaded.arguments, request.arguments);

    const nlohmann::json json = serializer->toJson(request);
    EXPECT_EQ(json, (nlohmann::json{{"service", "echo"}, {"arguments", {"app", "a b", "--c=1"}}}));
    const auto fromJson = serializer->loadFromJson(json);
    EXPECT_EQ(dynamic_cast<const ServiceRunRequest&>(*fromJson).arguments, request.arguments);
}

TEST(ServiceRunRequestTest, SerializerRefusesForeignRequestAndStaysUsable) {
    struct Foreign : Request {
        std::unique_ptr<AbstractRequestSerializer> serializer() const override { return {}; }
    };
    const ServiceRunRequest request(QStringLiteral("echo"), {"app"});
    const auto serializer = request.serializer();
    EXPECT_THROW(serializer->toJson(Foreign()), std::bad_cast);
    EXPECT_THROW(serializer->toCli(Foreign()), std::bad_cast);
    EXPECT_EQ(serializer->toCli(request), (QStringList{"app", "echo"}));
}

TEST(ServiceRunRequestTest, JsonWithoutAKeyRaisesAJsonException) {
    ServiceRunRequest::Serializer serializer;
    EXPECT_THROW(serializer.loadFromJson(nlohmann::json{{"service", "x"}}),
                 nlohmann::json::exception);
}

} // namespace
