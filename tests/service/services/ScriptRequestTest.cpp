#include "service/services/ScriptRequest.h"

#include "service/api/HelpException.h"
#include "tests/support/FailedWith.h"

#include <QCommandLineParser>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <typeinfo>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::failureText;
using namespace EditorService;

namespace {

const char* const pathError = "No script path specified, try --help for all avalable options";

struct ForeignRequest : Request {
    std::unique_ptr<AbstractRequestSerializer> serializer() const override { return nullptr; }
};

ScriptRequest loadFromCli(const QStringList& arguments) {
    const auto request = ScriptRequest::Serializer().loadFromCli(arguments);
    const auto* script = dynamic_cast<const ScriptRequest*>(request.get());
    if (!script)
        throw std::logic_error("loadFromCli made no ScriptRequest");
    return *script;
}

ScriptRequest loadFromJson(const nlohmann::json& value) {
    const auto request = ScriptRequest::Serializer().loadFromJson(value);
    const auto* script = dynamic_cast<const ScriptRequest*>(request.get());
    if (!script)
        throw std::logic_error("loadFromJson made no ScriptRequest");
    return *script;
}

std::exception_ptr pathErrorOf(const QStringList& arguments) {
    return failureOf([&] { loadFromCli(arguments); });
}

template <class Exception> std::optional<Exception> jsonFailureOf(const nlohmann::json& value) {
    try {
        loadFromJson(value);
    } catch (const Exception& error) {
        return error;
    }
    return std::nullopt;
}

TEST(ScriptRequestTest, StoresPathAndJobsUnchecked) {
    const ScriptRequest request(QString(), -7);
    EXPECT_TRUE(request.path.isEmpty());
    EXPECT_EQ(request.jobs, -7);
}

TEST(ScriptRequestTest, IsACopyableValue) {
    ScriptRequest original(QStringLiteral("a.txt"), 3);
    ScriptRequest copy = original;
    original.path = QStringLiteral("b.txt");
    EXPECT_EQ(copy.path, QStringLiteral("a.txt"));
    EXPECT_EQ(copy.jobs, 3);
    copy = original;
    EXPECT_EQ(copy.path, QStringLiteral("b.txt"));
}

TEST(ScriptRequestTest, SerializerIsAScriptRequestSerializer) {
    const ScriptRequest request(QStringLiteral("a.txt"), 1);
    const auto serializer = request.serializer();
    EXPECT_NE(dynamic_cast<ScriptRequest::Serializer*>(serializer.get()), nullptr);
}

TEST(ScriptRequestTest, KeepsTheRequestDefaultsForValidationAndHelp) {
    const ScriptRequest request(QString(), 0);
    EXPECT_NO_THROW(request.validateOnLoad());
    EXPECT_TRUE(request.description().isEmpty());
    EXPECT_TRUE(request.additionalHelp().isEmpty());
}

TEST(ScriptRequestTest, JobsOptionHasItsNamesDescriptionValueNameAndDefault) {
    const QCommandLineOption& option = ScriptRequest::jobsOption();
    EXPECT_EQ(option.names(), (QStringList{"jobs", "j"}));
    EXPECT_EQ(option.description(),
              QStringLiteral("Allow N jobs at once; 1 job with no arg, infinite with < 1"));
    EXPECT_EQ(option.valueName(), QStringLiteral("N"));
    EXPECT_EQ(option.defaultValues(), QStringList{"1"});
}

TEST(ScriptRequestTest, JobsOptionIsBuiltOnceAndShared) {
    EXPECT_EQ(&ScriptRequest::jobsOption(), &ScriptRequest::jobsOption());
}

TEST(ScriptRequestTest, HelpWithoutPathRaisesTheHelpTextAndNotThePathError) {
    const auto failure = failureOf([&] { loadFromCli({"app", "--help"}); });
    ASSERT_TRUE(failure);
    EXPECT_THROW(std::rethrow_exception(failure), CLI::HelpException);
    const QString text = QString::fromStdString(failureText(failure));
    EXPECT_TRUE(text.contains(QStringLiteral("Execute commands from script")));
    EXPECT_TRUE(text.contains(QStringLiteral("script")));
    EXPECT_TRUE(text.contains(QStringLiteral("Path to script file")));
    EXPECT_TRUE(text.contains(QStringLiteral("<path>")));
    EXPECT_TRUE(text.contains(QStringLiteral("--jobs, -j <N>")));
    EXPECT_TRUE(text.contains(
        QStringLiteral("Allow N jobs at once; 1 job with no arg, infinite with < 1")));
}

TEST(ScriptRequestTest, HelpTextIsTheParsersOwnWithNothingAdded) {
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.setApplicationDescription(QStringLiteral("Execute commands from script"));
    parser.addPositionalArgument(QStringLiteral("script"), QStringLiteral("Path to script file"),
                                 QStringLiteral("<path>"));
    parser.addOption(ScriptRequest::jobsOption());
    EXPECT_THAT(
        [&] {
            loadFromCli({"app", "-h", "a.txt"});
        },
        FailedWith<CLI::HelpException>(parser.helpText().toStdString()));
}

TEST(ScriptRequestTest, EmptyListRaisesThePathError) {
    EXPECT_THAT(pathErrorOf({}), FailedWith<std::invalid_argument>(pathError));
}

TEST(ScriptRequestTest, ProgramNameAloneRaisesThePathError) {
    EXPECT_THAT(pathErrorOf({"app"}), FailedWith<std::invalid_argument>(pathError));
}

TEST(ScriptRequestTest, SecondPositionalArgumentIsDropped) {
    const ScriptRequest request = loadFromCli({"app", "a.txt", "b.txt"});
    EXPECT_EQ(request.path, QStringLiteral("a.txt"));
    EXPECT_EQ(request.jobs, 1);
}

TEST(ScriptRequestTest, UnknownOptionIsIgnored) {
    const ScriptRequest request = loadFromCli({"app", "--nonsense", "a.txt", "-j", "2"});
    EXPECT_EQ(request.path, QStringLiteral("a.txt"));
    EXPECT_EQ(request.jobs, 2);
}

struct JobsRow {
    const char* name;
    QStringList arguments;
    std::optional<int> jobs; // empty: the path error
};

// Rows print as their names, which keeps the test names readable.
void PrintTo(const JobsRow& row, std::ostream* out) {
    *out << row.name;
}

class ScriptRequestJobsTest : public testing::TestWithParam<JobsRow> {};

TEST_P(ScriptRequestJobsTest, ReadsTheJobsOption) {
    const JobsRow& row = GetParam();
    if (!row.jobs) {
        EXPECT_THAT(pathErrorOf(row.arguments), FailedWith<std::invalid_argument>(pathError));
        return;
    }
    const ScriptRequest request = loadFromCli(row.arguments);
    EXPECT_EQ(request.path, QStringLiteral("script.txt"));
    EXPECT_EQ(request.jobs, *row.jobs);
}

INSTANTIATE_TEST_SUITE_P(
    JobsTable, ScriptRequestJobsTest,
    testing::Values(JobsRow{"NoJobsOption", {"app", "script.txt"}, 1},
                    JobsRow{"JobsLastWithoutValue", {"app", "script.txt", "--jobs"}, 1},
                    JobsRow{"LongWithEquals", {"app", "script.txt", "--jobs=3"}, 3},
                    JobsRow{"LongWithSeparateValue", {"app", "script.txt", "--jobs", "3"}, 3},
                    JobsRow{"ShortWithSeparateValue", {"app", "-j", "3", "script.txt"}, 3},
                    JobsRow{"Zero", {"app", "script.txt", "--jobs=0"}, 0},
                    JobsRow{"MinusOne", {"app", "script.txt", "--jobs=-1"}, -1},
                    JobsRow{"NotANumber", {"app", "script.txt", "--jobs=abc"}, 0},
                    JobsRow{"EmptyValue", {"app", "script.txt", "--jobs="}, 0},
                    JobsRow{"PathSwallowedAsValue", {"app", "--jobs", "script.txt"}, std::nullopt},
                    JobsRow{
                        "LastOccurrenceWins", {"app", "script.txt", "--jobs=2", "--jobs=5"}, 5}),
    [](const testing::TestParamInfo<JobsRow>& info) { return std::string(info.param.name); });

TEST(ScriptRequestTest, ToCliWritesStubPathAndJobs) {
    const ScriptRequest request(QStringLiteral("a b.txt"), 4);
    EXPECT_EQ(ScriptRequest::Serializer().toCli(request),
              (QStringList{"app-path-stub", "a b.txt", "--jobs=4"}));
}

TEST(ScriptRequestTest, ToCliWritesOneJobLikeAnyOtherValue) {
    const ScriptRequest request(QStringLiteral("a.txt"), 1);
    EXPECT_EQ(ScriptRequest::Serializer().toCli(request),
              (QStringList{"app-path-stub", "a.txt", "--jobs=1"}));
}

TEST(ScriptRequestTest, CommandLineRoundTripGivesTheSameRequest) {
    const ScriptRequest request(QStringLiteral("a b.txt"), 4);
    const ScriptRequest loaded = loadFromCli(ScriptRequest::Serializer().toCli(request));
    EXPECT_EQ(loaded.path, request.path);
    EXPECT_EQ(loaded.jobs, request.jobs);
}

TEST(ScriptRequestTest, ToJsonWritesPathAndJobsAsInteger) {
    const nlohmann::json value =
        ScriptRequest::Serializer().toJson(ScriptRequest(QStringLiteral("a b.txt"), 4));
    EXPECT_EQ(value, (nlohmann::json{{"path", "a b.txt"}, {"jobs", 4}}));
    EXPECT_TRUE(value.at("jobs").is_number_integer());
    EXPECT_EQ(value.dump(), R"({"jobs":4,"path":"a b.txt"})");
}

TEST(ScriptRequestTest, JsonRoundTripGivesTheSameRequest) {
    const ScriptRequest request(QStringLiteral("a b.txt"), 4);
    const ScriptRequest loaded = loadFromJson(ScriptRequest::Serializer().toJson(request));
    EXPECT_EQ(loaded.path, request.path);
    EXPECT_EQ(loaded.jobs, request.jobs);
}

TEST(ScriptRequestTest, JsonKeepsTextOutsideAscii) {
    const ScriptRequest request(QStringLiteral("sc\u00e8ne \u6587.txt"), -1);
    const ScriptRequest loaded = loadFromJson(ScriptRequest::Serializer().toJson(request));
    EXPECT_EQ(loaded.path, request.path);
    EXPECT_EQ(loaded.jobs, -1);
}

struct JsonJobsRow {
    const char* name;
    nlohmann::json jobs;
    int expected;
};

void PrintTo(const JsonJobsRow& row, std::ostream* out) {
    *out << row.name;
}

class ScriptRequestJsonJobsTest : public testing::TestWithParam<JsonJobsRow> {};

TEST_P(ScriptRequestJsonJobsTest, ConvertsJobsByItsJsonType) {
    const ScriptRequest request = loadFromJson({{"path", "a.txt"}, {"jobs", GetParam().jobs}});
    EXPECT_EQ(request.path, QStringLiteral("a.txt"));
    EXPECT_EQ(request.jobs, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    JsonJobs, ScriptRequestJsonJobsTest,
    testing::Values(JsonJobsRow{"Integer", 3, 3}, JsonJobsRow{"Negative", -1, -1},
                    JsonJobsRow{"Unsigned", 7u, 7},
                    JsonJobsRow{"IntegerCutTo32Bits", (std::int64_t(1) << 32) + 2, 2},
                    JsonJobsRow{"FloatTruncated", 2.9, 2},
                    JsonJobsRow{"NegativeFloatTruncatedTowardZero", -2.9, -2},
                    JsonJobsRow{"True", true, 1}, JsonJobsRow{"False", false, 0}),
    [](const testing::TestParamInfo<JsonJobsRow>& info) { return std::string(info.param.name); });

TEST(ScriptRequestTest, JsonWithEmptyPathAndNoLimitPassesUnvalidated) {
    const ScriptRequest request = loadFromJson({{"path", ""}, {"jobs", 0}});
    EXPECT_TRUE(request.path.isEmpty());
    EXPECT_EQ(request.jobs, 0);
}

TEST(ScriptRequestTest, StringJobsRaisesTypeError302) {
    const auto error =
        jsonFailureOf<nlohmann::json::type_error>({{"path", "a.txt"}, {"jobs", "2"}});
    ASSERT_TRUE(error);
    EXPECT_EQ(error->id, 302);
    EXPECT_STREQ(error->what(),
                 "[json.exception.type_error.302] type must be number, but is string");
}

TEST(ScriptRequestTest, JobsAreReadBeforeThePathIsTouched) {
    EXPECT_THAT(
        [] {
            loadFromJson({{"path", 5}, {"jobs", "2"}});
        },
        FailedWith<nlohmann::json::type_error>(
            "[json.exception.type_error.302] type must be number, but is string"));
}

TEST(ScriptRequestTest, NullOrArrayJobsRaisesTypeError302) {
    EXPECT_THAT(
        [] {
            loadFromJson({{"path", "a.txt"}, {"jobs", nullptr}});
        },
        FailedWith<nlohmann::json::type_error>(
            "[json.exception.type_error.302] type must be number, but is null"));
    EXPECT_THAT(
        [] {
            loadFromJson({{"path", "a.txt"}, {"jobs", nlohmann::json::array({1})}});
        },
        FailedWith<nlohmann::json::type_error>(
            "[json.exception.type_error.302] type must be number, but is array"));
}

TEST(ScriptRequestTest, PathThatIsNoStringRaisesTypeError302) {
    const auto error = jsonFailureOf<nlohmann::json::type_error>({{"path", 5}, {"jobs", 2}});
    ASSERT_TRUE(error);
    EXPECT_EQ(error->id, 302);
    EXPECT_STREQ(error->what(),
                 "[json.exception.type_error.302] type must be string, but is number");
}

struct NonObjectRow {
    const char* name;
    nlohmann::json value;
    const char* what;
};

void PrintTo(const NonObjectRow& row, std::ostream* out) {
    *out << row.name;
}

class ScriptRequestNonObjectTest : public testing::TestWithParam<NonObjectRow> {};

TEST_P(ScriptRequestNonObjectTest, RaisesTypeError305) {
    const auto error = jsonFailureOf<nlohmann::json::type_error>(GetParam().value);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->id, 305);
    EXPECT_STREQ(error->what(), GetParam().what);
}

INSTANTIATE_TEST_SUITE_P(
    NonObjects, ScriptRequestNonObjectTest,
    testing::Values(
        NonObjectRow{"String", "a.txt",
                     "[json.exception.type_error.305] cannot use operator[] with a string "
                     "argument with string"},
        NonObjectRow{"Array", nlohmann::json::array({"a.txt", 2}),
                     "[json.exception.type_error.305] cannot use operator[] with a string "
                     "argument with array"},
        NonObjectRow{"Null", nullptr,
                     "[json.exception.type_error.305] cannot use operator[] with a string "
                     "argument with null"},
        NonObjectRow{"Number", 2,
                     "[json.exception.type_error.305] cannot use operator[] with a string "
                     "argument with number"}),
    [](const testing::TestParamInfo<NonObjectRow>& info) { return std::string(info.param.name); });

TEST(ScriptRequestTest, MissingJobsRaisesAJsonExceptionAndNoDefault) {
    EXPECT_THAT(
        [] {
            loadFromJson({{"path", "a.txt"}});
        },
        FailedWith<nlohmann::json::out_of_range>(
            "[json.exception.out_of_range.403] key 'jobs' not found"));
}

TEST(ScriptRequestTest, MissingPathRaisesAJsonExceptionAndNoDefault) {
    EXPECT_THAT(
        [] {
            loadFromJson({{"jobs", 2}});
        },
        FailedWith<nlohmann::json::out_of_range>(
            "[json.exception.out_of_range.403] key 'path' not found"));
}

TEST(ScriptRequestTest, EmptyObjectRaisesAJsonException) {
    EXPECT_THROW(loadFromJson(nlohmann::json::object()), nlohmann::json::exception);
}

TEST(ScriptRequestTest, ToCliOfAForeignRequestRaisesBadCast) {
    EXPECT_THROW(ScriptRequest::Serializer().toCli(ForeignRequest()), std::bad_cast);
}

TEST(ScriptRequestTest, ToJsonOfAForeignRequestRaisesBadCast) {
    EXPECT_THROW(ScriptRequest::Serializer().toJson(ForeignRequest()), std::bad_cast);
}

} // namespace
