#include "service/requests/RequestInputArchive.h"

#include "service/api/HelpException.h"
#include "tests/service/requests/SampleRequest.h"
#include "tests/support/FailedWith.h"

#include <QCommandLineParser>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

using EditorService::visitField;
using EditorService::CLI::HelpException;
using EditorService::CLI::RequestInputArchive;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::failureText;
using EditorService::Testing::SampleRequest;

namespace {

// The sample with a description, further help, and a record of when the archive asks for them.
struct DescribedRequest : SampleRequest {
    std::vector<std::string>* log = nullptr;

    QString description() const override {
        log->push_back("description");
        return QStringLiteral("Runs the sample");
    }

    QString additionalHelp() const override {
        log->push_back("additionalHelp");
        return QStringLiteral("Examples:\n  sample --limit=5");
    }

    void validateOnLoad() const override {
        log->push_back("validateOnLoad limit=" + std::to_string(limit.value_or(-99)));
    }
};

QString referenceHelp(const QString& description) {
    QCommandLineParser parser;
    if (!description.isEmpty())
        parser.setApplicationDescription(description);
    parser.addOptions({SampleRequest::limitOption(), SampleRequest::countOption(),
                       SampleRequest::verboseOption(), SampleRequest::labelOption(),
                       SampleRequest::sizeOption()});
    parser.addHelpOption();
    return parser.helpText();
}

SampleRequest load(const QStringList& arguments) {
    SampleRequest request;
    RequestInputArchive archive(arguments);
    archive >> request;
    return request;
}

SampleRequest sample(const std::function<void(SampleRequest&)>& edit) {
    SampleRequest request;
    edit(request);
    return request;
}

struct GrammarRow {
    const char* name;
    QStringList arguments;
    std::function<void(SampleRequest&)> expected;
};

void PrintTo(const GrammarRow& row, std::ostream* out) {
    *out << row.name;
}

class RequestInputArchiveGrammarTest : public testing::TestWithParam<GrammarRow> {};

TEST_P(RequestInputArchiveGrammarTest, ReadsTheFields) {
    const SampleRequest loaded = load(GetParam().arguments);
    const SampleRequest expected = sample(GetParam().expected);

    EXPECT_EQ(loaded.limit, expected.limit);
    EXPECT_EQ(loaded.count, expected.count);
    EXPECT_EQ(loaded.verbose, expected.verbose);
    EXPECT_EQ(loaded.label, expected.label);
    EXPECT_EQ(loaded.size, expected.size);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, RequestInputArchiveGrammarTest,
    testing::Values(
        GrammarRow{"EmptyListLeavesOptionalsEmpty", {}, [](SampleRequest&) {}},
        GrammarRow{"LongWithEquals", {"--limit=5"}, [](SampleRequest& r) { r.limit = 5; }},
        GrammarRow{"LongWithValueBehind", {"--limit", "5"}, [](SampleRequest& r) { r.limit = 5; }},
        GrammarRow{"ShortWithValueBehind", {"-l", "5"}, [](SampleRequest& r) { r.limit = 5; }},
        GrammarRow{"ShortJoined", {"-l5"}, [](SampleRequest& r) { r.limit = 5; }},
        GrammarRow{"ShortJoinedWithEquals", {"-l=5"}, [](SampleRequest& r) { r.limit = 5; }},
        GrammarRow{
            "NegativeValueBehind", {"--limit", "-4"}, [](SampleRequest& r) { r.limit = -4; }},
        GrammarRow{"EmptyValueIsZero", {"--limit="}, [](SampleRequest& r) { r.limit = 0; }},
        GrammarRow{"NumberThenLetters", {"--limit=12abc"}, [](SampleRequest& r) { r.limit = 12; }},
        GrammarRow{"Hexadecimal", {"--limit=0x10"}, [](SampleRequest& r) { r.limit = 16; }},
        GrammarRow{"Octal", {"--limit=010"}, [](SampleRequest& r) { r.limit = 8; }},
        GrammarRow{"RepeatedOptionLastWins",
                   {"--limit=1", "--limit=2"},
                   [](SampleRequest& r) { r.limit = 2; }},
        GrammarRow{"RepeatedAcrossFormsLastWins",
                   {"-l", "1", "--limit=9", "-l3"},
                   [](SampleRequest& r) { r.limit = 3; }},
        GrammarRow{"LoneDoubleDashEndsOptions", {"--", "--limit=5"}, [](SampleRequest&) {}},
        GrammarRow{"OptionsBeforeDoubleDashCount",
                   {"--limit=5", "--", "--count=9"},
                   [](SampleRequest& r) { r.limit = 5; }},
        GrammarRow{"LastWithoutValueReadsDefaultText",
                   {"--limit"},
                   [](SampleRequest& r) { r.limit = -1; }},
        GrammarRow{"CountLastWithoutValueReadsDefaultText",
                   {"--count=8", "--count"},
                   [](SampleRequest& r) { r.count = 8; }},
        GrammarRow{"SizeLastWithoutValueReadsDefaultText",
                   {"--size"},
                   [](SampleRequest& r) { r.size = 4294967296LL; }},
        GrammarRow{"LabelLastWithoutValueIsEmptyText",
                   {"--label"},
                   [](SampleRequest& r) { r.label = QString(); }},
        GrammarRow{"IntWithoutOptionReadsDefaultText", {}, [](SampleRequest& r) { r.count = 3; }},
        GrammarRow{"IntGiven", {"-c", "12"}, [](SampleRequest& r) { r.count = 12; }},
        GrammarRow{"FlagLong", {"--verbose"}, [](SampleRequest& r) { r.verbose = true; }},
        GrammarRow{"FlagShort", {"-v"}, [](SampleRequest& r) { r.verbose = true; }},
        GrammarRow{"FlagCompactedWithValueOption",
                   {"-vl5"},
                   [](SampleRequest& r) {
                       r.verbose = true;
                       r.limit = 5;
                   }},
        GrammarRow{"SixtyFourBitSize",
                   {"--size=9000000000"},
                   [](SampleRequest& r) { r.size = 9000000000LL; }},
        GrammarRow{"LabelKeepsEqualsAndSpaces",
                   {"--label=a=b c"},
                   [](SampleRequest& r) { r.label = QStringLiteral("a=b c"); }},
        GrammarRow{"LabelNonAscii",
                   {QString::fromUtf8("--label=Grüße ✓")},
                   [](SampleRequest& r) { r.label = QString::fromUtf8("Grüße ✓"); }},
        GrammarRow{"LabelLooksLikeAnOption",
                   {"--label", "--limit=3"},
                   [](SampleRequest& r) { r.label = QStringLiteral("--limit=3"); }},
        GrammarRow{"UnknownOptionIgnored",
                   {"--nonsense", "--limit=3", "-x"},
                   [](SampleRequest& r) { r.limit = 3; }},
        GrammarRow{"PositionalArgumentsIgnored",
                   {"a.txt", "--limit=3", "b.txt"},
                   [](SampleRequest& r) { r.limit = 3; }},
        GrammarRow{"FlagGivenAValueStillSet",
                   {"--verbose=false"},
                   [](SampleRequest& r) { r.verbose = true; }}),
    [](const testing::TestParamInfo<GrammarRow>& info) { return std::string(info.param.name); });

struct FailureRow {
    const char* name;
    QStringList arguments;
    std::string message;
};

void PrintTo(const FailureRow& row, std::ostream* out) {
    *out << row.name;
}

class RequestInputArchiveFailureTest : public testing::TestWithParam<FailureRow> {};

TEST_P(RequestInputArchiveFailureTest, ThrowsTheParseError) {
    EXPECT_THAT([] { load(GetParam().arguments); },
                FailedWith<std::runtime_error>(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Values, RequestInputArchiveFailureTest,
    testing::Values(
        FailureRow{"LettersForOptionalInt", {"--limit=abc"}, "Can not parse \"abc\" as int"},
        FailureRow{"LettersBeforeDigits", {"-l", "abc12"}, "Can not parse \"abc12\" as int"},
        FailureRow{"LettersForInt", {"--count=x1"}, "Can not parse \"x1\" as int"},
        FailureRow{"LettersForLongLong", {"--size=big"}, "Can not parse \"big\" as long long"},
        FailureRow{"SpacesOnly", {"--limit=  "}, "Can not parse \"  \" as int"}),
    [](const testing::TestParamInfo<FailureRow>& info) { return std::string(info.param.name); });

TEST(RequestInputArchiveTest, EmptyListParsesTheStubAloneAndValidates) {
    std::vector<std::string> log;
    DescribedRequest request;
    request.log = &log;
    RequestInputArchive archive({});

    archive >> request;

    EXPECT_FALSE(request.limit.has_value());
    EXPECT_FALSE(request.label.has_value());
    EXPECT_FALSE(request.size.has_value());
    EXPECT_TRUE(archive.parser.positionalArguments().isEmpty());
    EXPECT_EQ(log, (std::vector<std::string>{"description", "validateOnLoad limit=-99"}));
}

TEST(RequestInputArchiveTest, ValidatesOnceAfterEveryFieldIsRead) {
    std::vector<std::string> log;
    DescribedRequest request;
    request.log = &log;
    RequestInputArchive archive({"--limit=4"});

    archive >> request;

    EXPECT_EQ(log, (std::vector<std::string>{"description", "validateOnLoad limit=4"}));
}

TEST(RequestInputArchiveTest, StubTakesTheProgramPathsPlace) {
    SampleRequest request;
    RequestInputArchive archive({"first", "--limit=2", "second"});

    archive >> request;

    EXPECT_EQ(archive.parser.positionalArguments(), (QStringList{"first", "second"}));
    EXPECT_EQ(archive.arguments, (QStringList{"first", "--limit=2", "second"}));
    EXPECT_TRUE(archive.optionStack.empty());
}

TEST(RequestInputArchiveTest, HelpThrowsTheParsersHelpTextUnchangedWithoutFurtherHelp) {
    EXPECT_THAT([] { load({"--help"}); },
                FailedWith<HelpException>(referenceHelp(QString()).toStdString()));
}

TEST(RequestInputArchiveTest, ShortHelpOptionIsHelpToo) {
    EXPECT_THAT([] { load({"-h"}); },
                FailedWith<HelpException>(referenceHelp(QString()).toStdString()));
}

TEST(RequestInputArchiveTest, HelpCarriesTheDescriptionAndTheFurtherHelpAfterALineFeed) {
    std::vector<std::string> log;
    DescribedRequest request;
    request.log = &log;

    const auto result = failureOf([&] {
        RequestInputArchive archive({"--help"});
        archive >> request;
    });

    EXPECT_THAT(result,
                FailedWith<HelpException>((referenceHelp(QStringLiteral("Runs the sample"))
                                           + QStringLiteral("\nExamples:\n  sample --limit=5"))
                                              .toStdString()));
    EXPECT_EQ(log, (std::vector<std::string>{"description", "additionalHelp"}));
}

TEST(RequestInputArchiveTest, HelpListsTheRequestsOptionsBeforeTheHelpOption) {
    const std::string help = failureText(failureOf([] { load({"--help"}); }));

    EXPECT_LT(help.find("--limit"), help.find("--help"));
    EXPECT_LT(help.find("--size"), help.find("--help"));
    EXPECT_NE(help.find("--limit, -l <seconds>"), std::string::npos);
}

TEST(RequestInputArchiveTest, HelpIsTestedBeforeAnyFieldIsRead) {
    std::vector<std::string> log;
    DescribedRequest request;
    request.log = &log;
    request.limit = 99;

    const auto result = failureOf([&] {
        RequestInputArchive archive({"--limit=abc", "--size=big", "--help", "--nonsense"});
        archive >> request;
    });

    ASSERT_TRUE(result);
    EXPECT_THROW(std::rethrow_exception(result), HelpException);
    EXPECT_EQ(request.limit, 99);
    EXPECT_EQ(log, (std::vector<std::string>{"description", "additionalHelp"}));
}

TEST(RequestInputArchiveTest, ParseFailureStopsTheLoadBeforeValidation) {
    std::vector<std::string> log;
    DescribedRequest request;
    request.log = &log;

    const auto result = failureOf([&] {
        RequestInputArchive archive({"--limit=abc"});
        archive >> request;
    });

    EXPECT_THAT(result, FailedWith<std::runtime_error>("Can not parse \"abc\" as int"));
    EXPECT_EQ(log, (std::vector<std::string>{"description"}));
}

TEST(RequestInputArchiveTest, PendingValuesAreConsumedAheadOfTheParser) {
    SampleRequest request;
    RequestInputArchive archive({"--limit=5", "--count=6"});
    archive.pendingValues = QStringList{"11"};

    archive >> request;

    EXPECT_EQ(request.limit, 11);
    EXPECT_EQ(request.count, 6);
    EXPECT_TRUE(archive.pendingValues.isEmpty());
}

// Two fields under one option name: the parser reports the clash, which is ignored.
struct SharedNameRequest : EditorService::DefaultRequestImpl<SharedNameRequest> {
    class Serializer;
    std::optional<int> first;
    int second = 0;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        visitField(archive, first, SampleRequest::limitOption());
        visitField(archive, second, SampleRequest::limitOption());
    }
};

class SharedNameRequest::Serializer
    : public EditorService::DefaultRequestSerializer<SharedNameRequest> {};

TEST(RequestInputArchiveTest, TwoFieldsWithOneOptionNameReadTheSameValue) {
    SharedNameRequest request;
    RequestInputArchive archive({"--limit=7"});

    archive >> request;

    EXPECT_EQ(request.first, 7);
    EXPECT_EQ(request.second, 7);
}

// A group of fields handed over as one value, as a request may share a set of options.
struct Group {
    std::optional<int> limit;
    bool verbose = false;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        visitField(archive, limit, SampleRequest::limitOption());
        visitField(archive, verbose, SampleRequest::verboseOption());
    }
};

struct GroupedRequest : EditorService::DefaultRequestImpl<GroupedRequest> {
    class Serializer;
    Group group;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        // clang-format off
        archive & group;
        // clang-format on
    }
};

class GroupedRequest::Serializer : public EditorService::DefaultRequestSerializer<GroupedRequest> {
};

TEST(RequestInputArchiveTest, GroupOfFieldsIsReadThroughItsOwnVisitor) {
    GroupedRequest::Serializer serializer;

    const auto loaded = serializer.loadFromCli({"-v", "--limit=6"});
    const auto& request = dynamic_cast<const GroupedRequest&>(*loaded);

    EXPECT_EQ(request.group.limit, 6);
    EXPECT_TRUE(request.group.verbose);
    EXPECT_EQ(serializer.toCli(request), (QStringList{"--limit=6", "--verbose"}));
    EXPECT_EQ(serializer.toJson(request),
              nlohmann::json::parse(R"({"limit": 6, "verbose": true})"));
    const auto fromJson = serializer.loadFromJson(serializer.toJson(request));
    EXPECT_EQ(dynamic_cast<const GroupedRequest&>(*fromJson).group.limit, 6);
}

} // namespace
