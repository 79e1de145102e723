#include "service/requests/OptionField.h"

#include <gtest/gtest.h>
#include <type_traits>

using EditorService::makeOptionField;
using EditorService::OptionField;

namespace {

TEST(OptionFieldTest, HoldsTheFieldsAddressAndItsOption) {
    int value = 3;
    const auto field =
        makeOptionField(value, QCommandLineOption({QStringLiteral("count"), QStringLiteral("c")},
                                                  QStringLiteral("How many"), QStringLiteral("N")));

    EXPECT_EQ(field.value, &value);
    EXPECT_EQ(field.option.names(), QStringList({"count", "c"}));
    EXPECT_EQ(field.option.valueName(), QStringLiteral("N"));
}

TEST(OptionFieldTest, IsConstSoItBindsToTheArchivesOperators) {
    int value = 0;
    static_assert(std::is_same_v<decltype(makeOptionField(value, QCommandLineOption("x"))),
                                 const OptionField<int>>);
    SUCCEED();
}

} // namespace
