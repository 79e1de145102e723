#include "platform/serialize/JsonDetail.h"

#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <vector>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
namespace detail = Serialize::Json::detail;

namespace {

template <class T> T loaded(const char* document) {
    T value{};
    detail::load(nlohmann::json::parse(document), value);
    return value;
}

template <class T> std::exception_ptr loadFailure(const char* document) {
    const auto value = nlohmann::json::parse(document);
    return failureOf([&] {
        T target{};
        detail::load(value, target);
    });
}

testing::Matcher<std::exception_ptr> typeError(const std::string& text) {
    return FailedWith<nlohmann::json::type_error>("[json.exception.type_error.302] " + text);
}

testing::Matcher<std::exception_ptr> overflow(const std::string& text) {
    return FailedWith<nlohmann::json::out_of_range>("[json.exception.out_of_range.406] " + text);
}

struct IntRow {
    const char* name;
    const char* document;
    int value;
};

void PrintTo(const IntRow& row, std::ostream* out) {
    *out << row.name;
}

class JsonDetailIntTest : public testing::TestWithParam<IntRow> {};

TEST_P(JsonDetailIntTest, LoadsTheNumber) {
    EXPECT_EQ(loaded<int>(GetParam().document), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, JsonDetailIntTest,
    testing::Values(IntRow{"Positive", "5", 5}, IntRow{"Negative", "-5", -5},
                    IntRow{"Largest", "2147483647", 2147483647},
                    IntRow{"Smallest", "-2147483648", -2147483647 - 1},
                    IntRow{"FloatTruncatesDown", "2.9", 2},
                    IntRow{"NegativeFloatTruncatesTowardZero", "-2.9", -2},
                    IntRow{"FloatJustInsideTheTop", "2147483647.9", 2147483647},
                    IntRow{"FloatJustInsideTheBottom", "-2147483648.9", -2147483647 - 1}),
    [](const testing::TestParamInfo<IntRow>& info) { return std::string(info.param.name); });

struct FailureRow {
    const char* name;
    const char* document;
    testing::Matcher<std::exception_ptr> failure;
};

void PrintTo(const FailureRow& row, std::ostream* out) {
    *out << row.name;
}

class JsonDetailIntFailureTest : public testing::TestWithParam<FailureRow> {};

TEST_P(JsonDetailIntFailureTest, RaisesTheJsonLibrarysException) {
    EXPECT_THAT(loadFailure<int>(GetParam().document), GetParam().failure);
}

INSTANTIATE_TEST_SUITE_P(
    Values, JsonDetailIntFailureTest,
    testing::Values(
        FailureRow{"String", R"("5")", typeError("type must be number, but is string")},
        FailureRow{"Boolean", "true", typeError("type must be number, but is boolean")},
        FailureRow{"Null", "null", typeError("type must be number, but is null")},
        FailureRow{"Object", "{}", typeError("type must be number, but is object")},
        FailureRow{"Array", "[1]", typeError("type must be number, but is array")},
        FailureRow{"AboveTheTop", "2147483648",
                   overflow("number overflow converting '2147483648' to int")},
        FailureRow{"BelowTheBottom", "-2147483649",
                   overflow("number overflow converting '-2147483649' to int")},
        FailureRow{"HugeUnsigned", "18446744073709551615",
                   overflow("number overflow converting '18446744073709551615' to int")},
        FailureRow{"FloatAboveTheTop", "2147483648.0",
                   overflow("number overflow converting '2147483648.0' to int")},
        FailureRow{"HugeFloat", "1e300", overflow("number overflow converting '1e+300' to int")}),
    [](const testing::TestParamInfo<FailureRow>& info) { return std::string(info.param.name); });

TEST(JsonDetailTest, LongLongLoadsSixtyFourBitNumbers) {
    EXPECT_EQ(loaded<long long>("9223372036854775807"), 9223372036854775807LL);
    EXPECT_EQ(loaded<long long>("-9223372036854775808"), -9223372036854775807LL - 1);
    EXPECT_EQ(loaded<long long>("-1e18"), -1000000000000000000LL);
    EXPECT_EQ(loaded<long long>("-9223372036854775808.0"), -9223372036854775807LL - 1);
}

TEST(JsonDetailTest, LongLongRaisesForWhatDoesNotFit) {
    EXPECT_THAT(loadFailure<long long>("9223372036854775808"),
                overflow("number overflow converting '9223372036854775808' to long long"));
    EXPECT_THAT(loadFailure<long long>("9223372036854775808.0"),
                overflow("number overflow converting '9.223372036854776e+18' to long long"));
    EXPECT_THAT(loadFailure<long long>("false"), typeError("type must be number, but is boolean"));
}

TEST(JsonDetailTest, BoolLoadsABooleanOnly) {
    EXPECT_TRUE(loaded<bool>("true"));
    EXPECT_FALSE(loaded<bool>("false"));
    EXPECT_THAT(loadFailure<bool>("1"), typeError("type must be boolean, but is number"));
    EXPECT_THAT(loadFailure<bool>("null"), typeError("type must be boolean, but is null"));
    EXPECT_THAT(loadFailure<bool>(R"("true")"), typeError("type must be boolean, but is string"));
}

TEST(JsonDetailTest, QStringLoadsAStringOnly) {
    EXPECT_EQ(loaded<QString>(R"("Grüße")"), QString::fromUtf8("Grüße"));
    EXPECT_THAT(loadFailure<QString>("5"), typeError("type must be string, but is number"));
}

TEST(JsonDetailTest, SavesEachValueAsItsJsonKind) {
    nlohmann::json value;

    detail::save(value, 5);
    EXPECT_TRUE(value.is_number_integer());
    EXPECT_EQ(value, nlohmann::json(5));

    detail::save(value, -9000000000LL);
    EXPECT_EQ(value, nlohmann::json(-9000000000LL));

    detail::save(value, true);
    EXPECT_TRUE(value.is_boolean());
    EXPECT_EQ(value, nlohmann::json(true));

    detail::save(value, QString::fromUtf8("Grüße"));
    EXPECT_EQ(value, nlohmann::json("Grüße"));
}

TEST(JsonDetailTest, OtherTypesGoThroughTheJsonLibrarysConversions) {
    EXPECT_EQ(loaded<double>("2.5"), 2.5);
    EXPECT_EQ(loaded<std::vector<int>>("[1, 2]"), (std::vector<int>{1, 2}));

    nlohmann::json value;
    detail::save(value, std::map<std::string, int>{{"a", 1}});
    EXPECT_EQ(value, nlohmann::json::parse(R"({"a": 1})"));
}

} // namespace
