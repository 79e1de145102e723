#include "service/requests/RequestOutputArchive.h"

#include "service/requests/RequestInputArchive.h"
#include "tests/service/requests/SampleRequest.h"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>

using EditorService::CLI::RequestInputArchive;
using EditorService::CLI::RequestOutputArchive;
using EditorService::Testing::LimitRequest;
using EditorService::Testing::SampleRequest;

namespace {

SampleRequest sample(const std::function<void(SampleRequest&)>& edit) {
    SampleRequest request;
    edit(request);
    return request;
}

QStringList write(const SampleRequest& request) {
    RequestOutputArchive archive;
    archive << request;
    return archive.arguments;
}

struct WrittenRow {
    const char* name;
    std::function<void(SampleRequest&)> edit;
    QStringList arguments;
};

void PrintTo(const WrittenRow& row, std::ostream* out) {
    *out << row.name;
}

class RequestOutputArchiveTest : public testing::TestWithParam<WrittenRow> {};

TEST_P(RequestOutputArchiveTest, WritesOneElementPerFieldWithAValueInFieldOrder) {
    EXPECT_EQ(write(sample(GetParam().edit)), GetParam().arguments);
}

TEST_P(RequestOutputArchiveTest, WhatIsWrittenReadsBackAsTheSameFields) {
    const SampleRequest original = sample(GetParam().edit);
    SampleRequest loaded;
    loaded.count = -100;
    RequestInputArchive archive(write(original));

    archive >> loaded;

    EXPECT_EQ(loaded, original);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, RequestOutputArchiveTest,
    testing::Values(
        WrittenRow{"EmptyOptionalsWriteNothing", [](SampleRequest&) {}, {"--count=3"}},
        WrittenRow{"EveryField",
                   [](SampleRequest& r) {
                       r.limit = 5;
                       r.count = 2;
                       r.verbose = true;
                       r.label = QStringLiteral("a b");
                       r.size = 9000000000LL;
                   },
                   {"--limit=5", "--count=2", "--verbose", "--label=a b", "--size=9000000000"}},
        WrittenRow{"NegativeNumbers",
                   [](SampleRequest& r) {
                       r.limit = -1;
                       r.count = -2147483647 - 1;
                       r.size = -1;
                   },
                   {"--limit=-1", "--count=-2147483648", "--size=-1"}},
        WrittenRow{
            "ZeroIsWritten", [](SampleRequest& r) { r.limit = 0; }, {"--limit=0", "--count=3"}},
        WrittenRow{
            "FalseFlagWritesNothing", [](SampleRequest& r) { r.verbose = false; }, {"--count=3"}},
        WrittenRow{"EmptyLabelIsWrittenWithAnEmptyValue",
                   [](SampleRequest& r) { r.label = QString(); },
                   {"--count=3", "--label="}},
        WrittenRow{"PlaceholdersInAValueStayAsTheyAre",
                   [](SampleRequest& r) { r.label = QStringLiteral("%1=%2"); },
                   {"--count=3", "--label=%1=%2"}},
        WrittenRow{"LabelLikeAnOption",
                   [](SampleRequest& r) { r.label = QStringLiteral("--limit=4"); },
                   {"--count=3", "--label=--limit=4"}},
        WrittenRow{"LabelLikeDoubleDash",
                   [](SampleRequest& r) { r.label = QStringLiteral("--"); },
                   {"--count=3", "--label=--"}},
        WrittenRow{"LabelNonAsciiAndLineFeed",
                   [](SampleRequest& r) { r.label = QString::fromUtf8("Grüße\n✓"); },
                   {"--count=3", QString::fromUtf8("--label=Grüße\n✓")}},
        WrittenRow{"LargestSize",
                   [](SampleRequest& r) { r.size = 9223372036854775807LL; },
                   {"--count=3", "--size=9223372036854775807"}}),
    [](const testing::TestParamInfo<WrittenRow>& info) { return std::string(info.param.name); });

TEST(RequestOutputArchiveBasicsTest, RequestWithNoFieldSetGivesAnEmptyList) {
    RequestOutputArchive archive;
    archive << LimitRequest();

    EXPECT_TRUE(archive.arguments.isEmpty());
    EXPECT_TRUE(archive.optionStack.empty());
}

TEST(RequestOutputArchiveBasicsTest, UsesTheFirstNameNeverAnAlias) {
    LimitRequest request;
    request.limit = 30;
    RequestOutputArchive archive;

    archive << request;

    EXPECT_EQ(archive.arguments, QStringList{"--limit=30"});
}

} // namespace
