#include "service/services/TimeoutRequestSerializer.h"

#include "platform/serialize/JsonConfig.h"
#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/services/ScriptRequest.h"
#include "tests/service/services/ProbeRequest.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>

namespace EditorService {
namespace {

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::failureText;
using Testing::ProbeRequest;

static_assert(std::is_default_constructible_v<TimeoutRequestSerializer>);
static_assert(std::is_constructible_v<TimeoutRequestSerializer,
                                      std::unique_ptr<AbstractRequestSerializer>&&>);
static_assert(
    !std::is_convertible_v<std::unique_ptr<AbstractRequestSerializer>&&, TimeoutRequestSerializer>);
static_assert(std::is_move_constructible_v<TimeoutRequestSerializer>);
static_assert(!std::is_copy_constructible_v<TimeoutRequestSerializer>);
static_assert(!std::is_copy_assignable_v<TimeoutRequestSerializer>);
static_assert(
    std::is_base_of_v<DefaultRequestSerializer<TimeoutRequest>, TimeoutRequestSerializer>);

// Writes a JSON value that is no object, as a wrapped serializer may.
class ScalarJsonSerializer : public AbstractRequestSerializer {
public:
    std::unique_ptr<Request> loadFromCli(const QStringList&) override {
        return std::make_unique<ProbeRequest>();
    }
    std::unique_ptr<Request> loadFromJson(const nlohmann::json&) override {
        return std::make_unique<ProbeRequest>();
    }
    QStringList toCli(const Request&) const override { return {}; }
    nlohmann::json toJson(const Request&) const override { return 42; }
};

const TimeoutRequest& asLimited(const std::unique_ptr<Request>& request) {
    return dynamic_cast<const TimeoutRequest&>(*request);
}

const ProbeRequest& wrappedProbe(const std::unique_ptr<Request>& request) {
    return dynamic_cast<const ProbeRequest&>(*asLimited(request).request);
}

const ScriptRequest& wrappedScript(const std::unique_ptr<Request>& request) {
    return dynamic_cast<const ScriptRequest&>(*asLimited(request).request);
}

TimeoutRequest limited(std::shared_ptr<Request> request, std::optional<int> timeout) {
    TimeoutRequest result;
    result.request = std::move(request);
    result.timeout = timeout;
    return result;
}

std::shared_ptr<Request> probe(std::optional<int> level) {
    auto request = std::make_shared<ProbeRequest>();
    request->level = level;
    return request;
}

class TimeoutRequestSerializerTest : public testing::Test {
protected:
    void SetUp() override { ProbeRequest::validations() = 0; }

    TimeoutRequestSerializer probeSerializer{std::make_unique<ProbeRequest::Serializer>()};
    TimeoutRequestSerializer scriptSerializer{std::make_unique<ScriptRequest::Serializer>()};
};

// Constructors

TEST_F(TimeoutRequestSerializerTest, DefaultConstructorLeavesConfigZero) {
    const TimeoutRequestSerializer serializer;

    EXPECT_EQ(serializer.config, 0);
}

TEST_F(TimeoutRequestSerializerTest, ConstructorFromWrappedSerializerLeavesConfigZero) {
    EXPECT_EQ(probeSerializer.config, 0);
}

TEST_F(TimeoutRequestSerializerTest, MoveConstructorCarriesWrappedSerializerAndConfig) {
    TimeoutRequestSerializer source(std::make_unique<ProbeRequest::Serializer>());
    source.config = Serialize::Json::Config::ExplicitOptionalNulls;

    TimeoutRequestSerializer target(std::move(source));

    EXPECT_EQ(target.config, Serialize::Json::Config::ExplicitOptionalNulls);
    const auto loaded = target.loadFromCli({"--level=2", "--timeout=3"});
    EXPECT_EQ(wrappedProbe(loaded).level, 2);
    EXPECT_THAT(
        [&] {
            target.loadFromJson({{"level", 2}});
        },
        FailedWith<std::runtime_error>("Optional field is required to be at least null, due to "
                                       "Config::ExplicitOptionalNulls"));
}

TEST_F(TimeoutRequestSerializerTest, DefaultConstructedSerializerCanBeMovedFrom) {
    TimeoutRequestSerializer source;

    const TimeoutRequestSerializer target(std::move(source));

    EXPECT_EQ(target.config, 0);
}

// Command line

TEST_F(TimeoutRequestSerializerTest, HelpComesFromWrappedSerializerWithoutTheLimitsOption) {
    const QStringList arguments{"app-path-stub", "--help"};
    const auto wrapped = failureOf([&] { ScriptRequest::Serializer().loadFromCli(arguments); });
    ASSERT_TRUE(wrapped);
    EXPECT_THROW(std::rethrow_exception(wrapped), CLI::HelpException);
    const std::string wrappedHelp = failureText(wrapped);

    EXPECT_THAT([&] { scriptSerializer.loadFromCli(arguments); },
                FailedWith<CLI::HelpException>(wrappedHelp));
    EXPECT_NE(wrappedHelp.find("--jobs"), std::string::npos);
    EXPECT_EQ(wrappedHelp.find("--timeout"), std::string::npos);
}

TEST_F(TimeoutRequestSerializerTest, HelpAmongBadArgumentsStillShowsWrappedHelp) {
    const auto failure = failureOf([&] {
        probeSerializer.loadFromCli({"--level=-1", "--timeout=abc", "--help"});
    });
    ASSERT_TRUE(failure);
    EXPECT_THROW(std::rethrow_exception(failure), CLI::HelpException);
    const std::string text = failureText(failure);
    EXPECT_NE(text.find("--level, -l <n>"), std::string::npos);
    EXPECT_EQ(text.find("--timeout"), std::string::npos);
    EXPECT_EQ(text.find("<seconds>"), std::string::npos);
    EXPECT_EQ(ProbeRequest::validations(), 0);
}

TEST_F(TimeoutRequestSerializerTest, BadWrappedArgumentsAreReportedBeforeABadLimitOnCommandLine) {
    EXPECT_THAT(
        [&] {
            probeSerializer.loadFromCli({"--level=-1", "--timeout=abc"});
        },
        FailedWith<Error>("Probe level must not be negative"));
}

TEST_F(TimeoutRequestSerializerTest, MissingScriptPathIsReportedBeforeABadLimitOnCommandLine) {
    EXPECT_THAT(
        [&] {
            scriptSerializer.loadFromCli({"app-path-stub", "--timeout=abc"});
        },
        FailedWith<std::invalid_argument>(
            "No script path specified, try --help for all avalable options"));
}

TEST_F(TimeoutRequestSerializerTest, LimitThatIsNoNumberFailsWithTheParseError) {
    EXPECT_THAT(
        [&] {
            probeSerializer.loadFromCli({"--level=1", "--timeout=abc"});
        },
        FailedWith<std::runtime_error>("Can not parse \"abc\" as int"));
}

TEST_F(TimeoutRequestSerializerTest, LimitAndWrappedRequestShareOneCommandLine) {
    const auto loaded = probeSerializer.loadFromCli({"--level=2", "--timeout=30"});

    EXPECT_EQ(wrappedProbe(loaded).level, 2);
    EXPECT_EQ(asLimited(loaded).timeout, 30);
}

TEST_F(TimeoutRequestSerializerTest, NoTimeoutOptionLeavesTheLimitEmpty) {
    const auto loaded = probeSerializer.loadFromCli({"--level=2"});

    EXPECT_FALSE(asLimited(loaded).timeout.has_value());
    EXPECT_EQ(wrappedProbe(loaded).level, 2);
}

TEST_F(TimeoutRequestSerializerTest, EmptyCommandLineLeavesBothEmpty) {
    const auto loaded = probeSerializer.loadFromCli({});

    EXPECT_FALSE(asLimited(loaded).timeout.has_value());
    EXPECT_FALSE(wrappedProbe(loaded).level.has_value());
}

TEST_F(TimeoutRequestSerializerTest, TimeoutLastWithoutValueReadsTheDefaultText) {
    EXPECT_EQ(asLimited(probeSerializer.loadFromCli({"--level=2", "--timeout"})).timeout, -1);
    EXPECT_EQ(asLimited(probeSerializer.loadFromCli({"-t"})).timeout, -1);
}

TEST_F(TimeoutRequestSerializerTest, TimeoutWithEmptyValueIsZero) {
    EXPECT_EQ(asLimited(probeSerializer.loadFromCli({"--timeout="})).timeout, 0);
}

TEST_F(TimeoutRequestSerializerTest, ValidatesWrappedRequestOnceFromCommandLine) {
    probeSerializer.loadFromCli({"--level=2", "--timeout=3"});

    EXPECT_EQ(ProbeRequest::validations(), 1);
}

struct LimitForm {
    const char* name;
    QStringList arguments;
    int timeout;
};

void PrintTo(const LimitForm& form, std::ostream* stream) {
    *stream << form.name;
}

class TimeoutRequestSerializerLimitFormTest : public testing::TestWithParam<LimitForm> {};

TEST_P(TimeoutRequestSerializerLimitFormTest, ReadsTheLimit) {
    TimeoutRequestSerializer serializer(std::make_unique<ProbeRequest::Serializer>());

    const auto loaded = serializer.loadFromCli(GetParam().arguments);

    EXPECT_EQ(asLimited(loaded).timeout, GetParam().timeout);
    EXPECT_EQ(wrappedProbe(loaded).level, 2);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, TimeoutRequestSerializerLimitFormTest,
    testing::Values(LimitForm{"Joined", {"--level=2", "--timeout=5"}, 5},
                    LimitForm{"Separate", {"--level=2", "--timeout", "5"}, 5},
                    LimitForm{"Alias", {"--level=2", "-t", "5"}, 5},
                    LimitForm{"AliasJoined", {"--level=2", "-t5"}, 5},
                    LimitForm{"LimitFirst", {"--timeout=5", "--level=2"}, 5},
                    LimitForm{"Repeated", {"--timeout=1", "--level=2", "--timeout=5"}, 5},
                    LimitForm{"LettersBehindNumber", {"--level=2", "--timeout=5s"}, 5},
                    LimitForm{"Negative", {"--level=2", "--timeout=-3"}, -3},
                    LimitForm{"Hexadecimal", {"--level=2", "--timeout=0x10"}, 16},
                    LimitForm{"Octal", {"--level=2", "--timeout=010"}, 8}),
    [](const testing::TestParamInfo<LimitForm>& info) { return std::string(info.param.name); });

struct PositionalForm {
    const char* name;
    QStringList arguments;
    QString path;
};

void PrintTo(const PositionalForm& form, std::ostream* stream) {
    *stream << form.name;
}

class TimeoutRequestSerializerPositionalTest : public testing::TestWithParam<PositionalForm> {};

// The script serializer knows no limit, so a limit's value standing apart is one of its
// positional arguments.
TEST_P(TimeoutRequestSerializerPositionalTest, WrappedRequestReadsItsPath) {
    TimeoutRequestSerializer serializer(std::make_unique<ScriptRequest::Serializer>());

    const auto loaded = serializer.loadFromCli(GetParam().arguments);

    EXPECT_EQ(wrappedScript(loaded).path, GetParam().path);
    EXPECT_EQ(asLimited(loaded).timeout, 5);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, TimeoutRequestSerializerPositionalTest,
    testing::Values(
        PositionalForm{"SeparateValueTakenForPath", {"app-path-stub", "--timeout", "5"}, "5"},
        PositionalForm{"AliasValueTakenForPath", {"app-path-stub", "-t", "5"}, "5"},
        PositionalForm{
            "SeparateValueBeforePath", {"app-path-stub", "--timeout", "5", "a.txt"}, "5"},
        PositionalForm{
            "SeparateValueBehindPath", {"app-path-stub", "a.txt", "--timeout", "5"}, "a.txt"},
        PositionalForm{
            "JoinedValueBeforePath", {"app-path-stub", "--timeout=5", "a.txt"}, "a.txt"}),
    [](const testing::TestParamInfo<PositionalForm>& info) {
        return std::string(info.param.name);
    });

TEST_F(TimeoutRequestSerializerTest, JoinedLimitLeavesNoPositionalBehind) {
    EXPECT_THAT(
        [&] {
            scriptSerializer.loadFromCli({"app-path-stub", "--timeout=5"});
        },
        FailedWith<std::invalid_argument>(
            "No script path specified, try --help for all avalable options"));
}

TEST_F(TimeoutRequestSerializerTest, ToCliOfWrappedScriptRequestIsScriptListAndLimit) {
    const TimeoutRequest request = limited(std::make_shared<ScriptRequest>("a.txt", 2), 30);

    const QStringList arguments = scriptSerializer.toCli(request);

    EXPECT_EQ(arguments, (QStringList{"app-path-stub", "a.txt", "--jobs=2", "--timeout=30"}));
}

TEST_F(TimeoutRequestSerializerTest, ScriptListWithLimitLoadsBackAsItStands) {
    const TimeoutRequest request = limited(std::make_shared<ScriptRequest>("a.txt", 2), 30);

    const auto loaded = scriptSerializer.loadFromCli(scriptSerializer.toCli(request));

    EXPECT_EQ(wrappedScript(loaded).path, QStringLiteral("a.txt"));
    EXPECT_EQ(wrappedScript(loaded).jobs, 2);
    EXPECT_EQ(asLimited(loaded).timeout, 30);
}

TEST_F(TimeoutRequestSerializerTest, ToCliPutsWrappedArgumentsFirstAndLimitLast) {
    const TimeoutRequest request = limited(probe(3), 30);

    EXPECT_EQ(probeSerializer.toCli(request), (QStringList{"--level=3", "--timeout=30"}));
}

TEST_F(TimeoutRequestSerializerTest, ToCliWithoutLimitIsTheWrappedList) {
    const auto wrapped = std::make_shared<ScriptRequest>("a.txt", 2);

    EXPECT_EQ(scriptSerializer.toCli(limited(wrapped, std::nullopt)),
              ScriptRequest::Serializer().toCli(*wrapped));
}

TEST_F(TimeoutRequestSerializerTest, ToCliWithoutWrappedRequestIsTheLimitAlone) {
    EXPECT_EQ(scriptSerializer.toCli(limited(nullptr, 4)), QStringList{"--timeout=4"});
    EXPECT_EQ(scriptSerializer.toCli(limited(nullptr, std::nullopt)), QStringList());
}

TEST_F(TimeoutRequestSerializerTest, ToCliOfOtherRequestIsTheWrappedSerializers) {
    const ScriptRequest request("a.txt", 3);

    EXPECT_EQ(scriptSerializer.toCli(request), ScriptRequest::Serializer().toCli(request));
}

TEST_F(TimeoutRequestSerializerTest, ToCliOfRequestForeignToBothFailsInWrappedSerializer) {
    EXPECT_THROW(scriptSerializer.toCli(ProbeRequest()), std::bad_cast);
    EXPECT_THROW(scriptSerializer.toJson(ProbeRequest()), std::bad_cast);
}

TEST_F(TimeoutRequestSerializerTest, CommandLineRoundTripGivesEqualFields) {
    const TimeoutRequest request = limited(probe(0), 12);

    const auto loaded = probeSerializer.loadFromCli(probeSerializer.toCli(request));

    EXPECT_EQ(wrappedProbe(loaded).level, 0);
    EXPECT_EQ(asLimited(loaded).timeout, 12);
}

// JSON

TEST_F(TimeoutRequestSerializerTest, ToJsonOfWrappedScriptRequestIsOneFlatObject) {
    const TimeoutRequest request = limited(std::make_shared<ScriptRequest>("a.txt", 2), 30);

    EXPECT_EQ(scriptSerializer.toJson(request),
              (nlohmann::json{{"path", "a.txt"}, {"jobs", 2}, {"timeout", 30}}));
}

TEST_F(TimeoutRequestSerializerTest, ToJsonWithoutWrappedRequestAndLimitIsNull) {
    EXPECT_TRUE(probeSerializer.toJson(limited(nullptr, std::nullopt)).is_null());
}

TEST_F(TimeoutRequestSerializerTest, ToJsonWithoutWrappedRequestIsTheLimitAlone) {
    EXPECT_EQ(probeSerializer.toJson(limited(nullptr, 5)), (nlohmann::json{{"timeout", 5}}));
}

TEST_F(TimeoutRequestSerializerTest, ToJsonWithoutLimitIsTheWrappedValue) {
    const auto wrapped = std::make_shared<ScriptRequest>("a.txt", 2);

    EXPECT_EQ(scriptSerializer.toJson(limited(wrapped, std::nullopt)),
              ScriptRequest::Serializer().toJson(*wrapped));
}

TEST_F(TimeoutRequestSerializerTest, ToJsonMakesAnObjectOfAWrappedNull) {
    EXPECT_TRUE(probeSerializer.toJson(limited(probe(std::nullopt), std::nullopt)).is_null());
    EXPECT_EQ(probeSerializer.toJson(limited(probe(std::nullopt), 5)),
              (nlohmann::json{{"timeout", 5}}));
}

TEST_F(TimeoutRequestSerializerTest, ToJsonReplacesAWrappedValueThatIsNoObject) {
    const TimeoutRequestSerializer serializer(std::make_unique<ScalarJsonSerializer>());

    EXPECT_EQ(serializer.toJson(limited(probe(1), 5)), (nlohmann::json{{"timeout", 5}}));
    EXPECT_EQ(serializer.toJson(limited(probe(1), std::nullopt)), nlohmann::json(42));
}

TEST_F(TimeoutRequestSerializerTest, ToJsonOfOtherRequestIsTheWrappedSerializers) {
    const ScriptRequest request("a.txt", 3);

    EXPECT_EQ(scriptSerializer.toJson(request), ScriptRequest::Serializer().toJson(request));
}

TEST_F(TimeoutRequestSerializerTest, LoadFromJsonReadsLimitAndWrappedRequestFromOneObject) {
    const auto loaded =
        scriptSerializer.loadFromJson({{"path", "a.txt"}, {"jobs", 2}, {"timeout", 30}});

    EXPECT_EQ(wrappedScript(loaded).path, QStringLiteral("a.txt"));
    EXPECT_EQ(wrappedScript(loaded).jobs, 2);
    EXPECT_EQ(asLimited(loaded).timeout, 30);
}

TEST_F(TimeoutRequestSerializerTest, MissingTimeoutKeyLeavesTheLimitEmpty) {
    const auto loaded = probeSerializer.loadFromJson({{"level", 2}});

    EXPECT_FALSE(asLimited(loaded).timeout.has_value());
    EXPECT_EQ(wrappedProbe(loaded).level, 2);
}

TEST_F(TimeoutRequestSerializerTest, NullTimeoutLeavesTheLimitEmpty) {
    const auto loaded = probeSerializer.loadFromJson({{"level", 2}, {"timeout", nullptr}});

    EXPECT_FALSE(asLimited(loaded).timeout.has_value());
}

TEST_F(TimeoutRequestSerializerTest, JsonLimitOfStringTypeFails) {
    try {
        probeSerializer.loadFromJson({{"level", 2}, {"timeout", "5"}});
        FAIL() << "a string limit must fail";
    } catch (const nlohmann::json::type_error& error) {
        EXPECT_EQ(error.id, 302);
        EXPECT_STREQ(error.what(),
                     "[json.exception.type_error.302] type must be number, but is string");
    }
}

TEST_F(TimeoutRequestSerializerTest, JsonLimitOfBooleanTypeFails) {
    EXPECT_THAT(
        [&] {
            probeSerializer.loadFromJson({{"level", 2}, {"timeout", true}});
        },
        FailedWith<nlohmann::json::type_error>(
            "[json.exception.type_error.302] type must be number, but is boolean"));
}

TEST_F(TimeoutRequestSerializerTest, BadLimitIsReportedBeforeBadWrappedRequestInJson) {
    EXPECT_THAT(
        [&] {
            probeSerializer.loadFromJson({{"level", -1}, {"timeout", "abc"}});
        },
        FailedWith<nlohmann::json::type_error>(
            "[json.exception.type_error.302] type must be number, but is string"));
    EXPECT_EQ(ProbeRequest::validations(), 0);
}

TEST_F(TimeoutRequestSerializerTest, BadWrappedRequestFailsBehindAGoodLimitInJson) {
    EXPECT_THAT(
        [&] {
            probeSerializer.loadFromJson({{"level", -1}, {"timeout", 3}});
        },
        FailedWith<Error>("Probe level must not be negative"));
}

TEST_F(TimeoutRequestSerializerTest, ValidatesWrappedRequestTwiceFromJson) {
    probeSerializer.loadFromJson({{"level", 2}, {"timeout", 3}});

    EXPECT_EQ(ProbeRequest::validations(), 2);
}

TEST_F(TimeoutRequestSerializerTest, JsonRoundTripGivesEqualFields) {
    const TimeoutRequest request = limited(probe(7), 12);

    const auto loaded = probeSerializer.loadFromJson(probeSerializer.toJson(request));

    EXPECT_EQ(wrappedProbe(loaded).level, 7);
    EXPECT_EQ(asLimited(loaded).timeout, 12);
}

} // namespace
} // namespace EditorService
