#include "service/requests/DefaultRequestSerializer.h"

#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "tests/service/requests/SampleRequest.h"
#include "tests/support/FailedWith.h"

#include <QCommandLineParser>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <typeinfo>

using EditorService::AbstractRequestSerializer;
using EditorService::DefaultRequestSerializer;
using EditorService::Error;
using EditorService::Request;
using EditorService::CLI::HelpException;
using EditorService::Testing::FailedWith;
using EditorService::Testing::LimitRequest;
using EditorService::Testing::SampleRequest;

namespace {

// Counts its validations, and finds a negative limit invalid.
struct CheckedRequest : SampleRequest {
    mutable int validations = 0;

    void validateOnLoad() const override {
        ++validations;
        if (limit && *limit < 0)
            throw Error("The limit must not be negative");
    }
};

const CheckedRequest& checked(const std::unique_ptr<Request>& request) {
    return dynamic_cast<const CheckedRequest&>(*request);
}

SampleRequest sample(const std::function<void(SampleRequest&)>& edit) {
    SampleRequest request;
    edit(request);
    return request;
}

TEST(DefaultRequestSerializerTest, LoadsFromACommandLineAndValidatesOnce) {
    DefaultRequestSerializer<CheckedRequest> serializer;

    const auto request = serializer.loadFromCli({"--limit=3", "--verbose"});

    EXPECT_EQ(typeid(*request), typeid(CheckedRequest));
    EXPECT_EQ(checked(request).limit, 3);
    EXPECT_TRUE(checked(request).verbose);
    EXPECT_EQ(checked(request).validations, 1);
}

TEST(DefaultRequestSerializerTest, LoadsFromJsonAndValidatesTwice) {
    DefaultRequestSerializer<CheckedRequest> serializer;

    const auto request = serializer.loadFromJson(nlohmann::json::parse(R"({"limit": 3})"));

    EXPECT_EQ(typeid(*request), typeid(CheckedRequest));
    EXPECT_EQ(checked(request).limit, 3);
    EXPECT_EQ(checked(request).validations, 2);
}

TEST(DefaultRequestSerializerTest, ValidationFailurePassesThroughUnchanged) {
    DefaultRequestSerializer<CheckedRequest> serializer;

    EXPECT_THAT([&] { serializer.loadFromCli({"--limit=-2"}); },
                FailedWith<Error>("The limit must not be negative"));
    EXPECT_THAT([&] { serializer.loadFromJson(nlohmann::json::parse(R"({"limit": -2})")); },
                FailedWith<Error>("The limit must not be negative"));
}

TEST(DefaultRequestSerializerTest, ParseFailurePassesThroughUnchanged) {
    SampleRequest::Serializer serializer;

    EXPECT_THAT([&] { serializer.loadFromCli({"--limit=abc"}); },
                FailedWith<std::runtime_error>("Can not parse \"abc\" as int"));
}

TEST(DefaultRequestSerializerTest, HelpPassesThroughWithTheParsersTextAlone) {
    SampleRequest::Serializer serializer;
    QCommandLineParser reference;
    reference.addOptions({SampleRequest::limitOption(), SampleRequest::countOption(),
                          SampleRequest::verboseOption(), SampleRequest::labelOption(),
                          SampleRequest::sizeOption()});
    reference.addHelpOption();

    EXPECT_THAT([&] { serializer.loadFromCli({"--help"}); },
                FailedWith<HelpException>(reference.helpText().toStdString()));
}

TEST(DefaultRequestSerializerTest, RequestKeepingTheBaseVersionsLoadsWithoutFailure) {
    SampleRequest::Serializer serializer;

    EXPECT_NO_THROW(serializer.loadFromCli({}));
    EXPECT_NO_THROW(serializer.loadFromJson(nlohmann::json()));
    EXPECT_NO_THROW(serializer.loadFromJson(nlohmann::json::object()));
}

TEST(DefaultRequestSerializerTest, WritesTheCommandLineWithoutAProgramPath) {
    SampleRequest::Serializer serializer;
    SampleRequest request;
    request.limit = 30;

    EXPECT_EQ(serializer.toCli(request), (QStringList{"--limit=30", "--count=3"}));
}

TEST(DefaultRequestSerializerTest, RequestWithNoFieldSetGivesAnEmptyListAndJsonNull) {
    LimitRequest::Serializer serializer;

    EXPECT_TRUE(serializer.toCli(LimitRequest()).isEmpty());
    const nlohmann::json written = serializer.toJson(LimitRequest());
    EXPECT_TRUE(written.is_null());
}

TEST(DefaultRequestSerializerTest, ForeignRequestRaisesBadCastAndLeavesTheSerializerUsable) {
    SampleRequest::Serializer serializer;
    LimitRequest foreign;
    foreign.limit = 1;
    SampleRequest own;
    own.limit = 2;

    EXPECT_THAT([&] { serializer.toJson(foreign); }, FailedWith<std::bad_cast>("std::bad_cast"));
    EXPECT_EQ(serializer.toJson(own), nlohmann::json::parse(R"({"limit": 2, "count": 3,
        "verbose": false})"));
    EXPECT_THAT([&] { serializer.toCli(foreign); }, FailedWith<std::bad_cast>("std::bad_cast"));
    EXPECT_EQ(serializer.toCli(own), (QStringList{"--limit=2", "--count=3"}));
}

TEST(DefaultRequestSerializerTest, ConfigStartsAtZeroAndIsCopied) {
    SampleRequest::Serializer serializer;
    EXPECT_EQ(serializer.config, 0);

    serializer.config = Serialize::Json::Config::ExplicitOptionalNulls;
    const SampleRequest::Serializer copy = serializer;

    EXPECT_EQ(copy.config, Serialize::Json::Config::ExplicitOptionalNulls);
}

TEST(DefaultRequestSerializerTest, ConfigReachesTheJsonArchives) {
    LimitRequest::Serializer serializer;
    serializer.config = Serialize::Json::Config::ExplicitOptionalNulls;

    EXPECT_EQ(serializer.toJson(LimitRequest()), nlohmann::json::parse(R"({"limit": null})"));
    EXPECT_THAT(
        [&] { serializer.loadFromJson(nlohmann::json::object()); },
        FailedWith<std::runtime_error>("Optional field is required to be at least null, due "
                                       "to Config::ExplicitOptionalNulls"));
}

TEST(DefaultRequestSerializerTest, UnknownReferenceRaisesOutOfRange) {
    SampleRequest::Serializer serializer;

    EXPECT_THAT([&] { serializer.loadFromJson(nlohmann::json::parse(R"({"$ref": 9})")); },
                FailedWith<std::out_of_range>("invalid map<K, T> key"));
}

struct RoundTripRow {
    const char* name;
    int config;
    std::function<void(SampleRequest&)> edit;
};

void PrintTo(const RoundTripRow& row, std::ostream* out) {
    *out << row.name;
}

class DefaultRequestSerializerRoundTripTest : public testing::TestWithParam<RoundTripRow> {
protected:
    SampleRequest::Serializer serializer() {
        SampleRequest::Serializer serializer;
        serializer.config = GetParam().config;
        return serializer;
    }
};

TEST_P(DefaultRequestSerializerRoundTripTest, CommandLineFormReadsBackEqual) {
    auto serializer = this->serializer();
    const SampleRequest original = sample(GetParam().edit);

    const auto loaded = serializer.loadFromCli(serializer.toCli(original));

    EXPECT_EQ(dynamic_cast<const SampleRequest&>(*loaded), original);
}

TEST_P(DefaultRequestSerializerRoundTripTest, JsonFormReadsBackEqual) {
    auto serializer = this->serializer();
    const SampleRequest original = sample(GetParam().edit);

    const auto loaded = serializer.loadFromJson(serializer.toJson(original));

    EXPECT_EQ(dynamic_cast<const SampleRequest&>(*loaded), original);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, DefaultRequestSerializerRoundTripTest,
    testing::Values(RoundTripRow{"Empty", 0, [](SampleRequest&) {}},
                    RoundTripRow{"EmptyWithExplicitNulls",
                                 Serialize::Json::Config::ExplicitOptionalNulls,
                                 [](SampleRequest&) {}},
                    RoundTripRow{"EveryField", 0,
                                 [](SampleRequest& r) {
                                     r.limit = -7;
                                     r.count = 0;
                                     r.verbose = true;
                                     r.label = QString::fromUtf8("--a=b \"c\" ✓");
                                     r.size = 1LL << 40;
                                 }},
                    RoundTripRow{"EmptyLabel", 0, [](SampleRequest& r) { r.label = QString(); }},
                    RoundTripRow{"ExtremeNumbers", Serialize::Json::Config::ExplicitOptionalNulls,
                                 [](SampleRequest& r) {
                                     r.limit = -2147483647 - 1;
                                     r.count = 2147483647;
                                     r.size = 9223372036854775807LL;
                                 }}),
    [](const testing::TestParamInfo<RoundTripRow>& info) { return std::string(info.param.name); });

} // namespace
