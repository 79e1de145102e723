#include "service/requests/OptionDumper.h"

#include "tests/service/requests/SampleRequest.h"

#include <gtest/gtest.h>

using EditorService::CLI::OptionDumper;
using EditorService::Testing::LimitRequest;
using EditorService::Testing::SampleRequest;

namespace {

QList<QStringList> namesOf(const QList<QCommandLineOption>& options) {
    QList<QStringList> names;
    for (const auto& option : options)
        names.append(option.names());
    return names;
}

TEST(OptionDumperTest, CollectsTheOptionsInVisitOrder) {
    OptionDumper dumper;
    dumper << SampleRequest();

    EXPECT_EQ(namesOf(dumper.options),
              (QList<QStringList>{
                  {"limit", "l"}, {"count", "c"}, {"verbose", "v"}, {"label"}, {"size", "s"}}));
}

TEST(OptionDumperTest, KeepsEachOptionWhole) {
    OptionDumper dumper;
    dumper << SampleRequest();

    const QCommandLineOption& limit = dumper.options.at(0);
    EXPECT_EQ(limit.description(), QStringLiteral("Limit in seconds"));
    EXPECT_EQ(limit.valueName(), QStringLiteral("seconds"));
    EXPECT_EQ(limit.defaultValues(), QStringList{"-1"});
    EXPECT_TRUE(dumper.options.at(2).valueName().isEmpty());
}

TEST(OptionDumperTest, LeavesTheValuesUntouched) {
    SampleRequest request;
    request.limit = 5;
    request.count = 9;
    request.verbose = true;
    request.label = QStringLiteral("x");
    const SampleRequest before = request;

    OptionDumper dumper;
    dumper << request;

    EXPECT_EQ(request, before);
}

TEST(OptionDumperTest, CollectsAnOptionOfAnEmptyField) {
    OptionDumper dumper;
    dumper << LimitRequest();

    EXPECT_EQ(namesOf(dumper.options), (QList<QStringList>{{"limit", "l"}}));
}

TEST(OptionDumperTest, AppendsToWhatItHoldsAlready) {
    OptionDumper dumper;
    dumper << LimitRequest();
    dumper << LimitRequest();

    EXPECT_EQ(dumper.options.size(), 2);
}

} // namespace
