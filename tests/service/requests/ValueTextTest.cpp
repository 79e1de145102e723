#include "service/requests/ValueText.h"

#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>

using EditorService::Testing::FailedWith;
namespace CLI = EditorService::CLI;

namespace {

struct IntRow {
    const char* name;
    QString text;
    int value;
};

void PrintTo(const IntRow& row, std::ostream* out) {
    *out << row.name;
}

class ParseIntTest : public testing::TestWithParam<IntRow> {};

TEST_P(ParseIntTest, ReadsTheNumberAsTheTextStreamDoes) {
    EXPECT_EQ(CLI::parseValue<int>(QString(GetParam().text)), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ParseIntTest,
    testing::Values(IntRow{"Decimal", "12", 12}, IntRow{"Negative", "-4", -4},
                    IntRow{"EmptyIsZero", "", 0}, IntRow{"LeadingSpace", " 7", 7},
                    IntRow{"TrailingLettersIgnored", "12abc", 12},
                    IntRow{"TrailingSpaceIgnored", "5 ", 5}, IntRow{"Hexadecimal", "0x1F", 31},
                    IntRow{"Octal", "010", 8}, IntRow{"ExponentIgnored", "1e5", 1},
                    IntRow{"NegativeZero", "-0", 0}),
    [](const testing::TestParamInfo<IntRow>& info) { return std::string(info.param.name); });

struct FailureRow {
    const char* name;
    QString text;
    std::string message;
};

void PrintTo(const FailureRow& row, std::ostream* out) {
    *out << row.name;
}

class ParseIntFailureTest : public testing::TestWithParam<FailureRow> {};

TEST_P(ParseIntFailureTest, ThrowsRuntimeErrorQuotingTheWholeText) {
    EXPECT_THAT([] { CLI::parseValue<int>(QString(GetParam().text)); },
                FailedWith<std::runtime_error>(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ParseIntFailureTest,
    testing::Values(FailureRow{"Letters", "abc", "Can not parse \"abc\" as int"},
                    FailureRow{"LettersThenDigits", "abc12", "Can not parse \"abc12\" as int"},
                    FailureRow{"SpacesOnly", "   ", "Can not parse \"   \" as int"},
                    FailureRow{"SignOnly", "-", "Can not parse \"-\" as int"},
                    FailureRow{"HexPrefixOnly", "0x", "Can not parse \"0x\" as int"},
                    FailureRow{"NonAscii", "zwölf", "Can not parse \"zwölf\" as int"},
                    FailureRow{"PlaceholderInText", "%2", "Can not parse \"%2\" as int"},
                    FailureRow{"ZeroPlaceholderInText", "a%00", "Can not parse \"a%00\" as int"}),
    [](const testing::TestParamInfo<FailureRow>& info) { return std::string(info.param.name); });

TEST(ValueTextTest, LongLongReadsSixtyFourBitNumbers) {
    EXPECT_EQ(CLI::parseValue<long long>(QStringLiteral("9000000000")), 9000000000LL);
    EXPECT_EQ(CLI::parseValue<long long>(QStringLiteral("-9000000000")), -9000000000LL);
    EXPECT_EQ(CLI::parseValue<long long>(QString()), 0LL);
    EXPECT_EQ(CLI::parseValue<long long>(QStringLiteral("0x10 bytes")), 16LL);
}

TEST(ValueTextTest, LongLongFailureNamesLongLong) {
    EXPECT_THAT([] { CLI::parseValue<long long>(QStringLiteral("big")); },
                FailedWith<std::runtime_error>("Can not parse \"big\" as long long"));
}

TEST(ValueTextTest, QStringIsTheTextItselfAndNeverFails) {
    EXPECT_EQ(CLI::parseValue<QString>(QStringLiteral(" a = b ")), QStringLiteral(" a = b "));
    EXPECT_EQ(CLI::parseValue<QString>(QStringLiteral("abc")), QStringLiteral("abc"));
    EXPECT_TRUE(CLI::parseValue<QString>(QString()).isEmpty());
    EXPECT_EQ(CLI::parseValue<QString>(QString::fromUtf8("Grüße ✓")), QString::fromUtf8("Grüße ✓"));
}

TEST(ValueTextTest, NumbersAreWrittenInDecimal) {
    EXPECT_EQ(CLI::dumpValue<int>(42), QStringLiteral("42"));
    EXPECT_EQ(CLI::dumpValue<int>(-7), QStringLiteral("-7"));
    EXPECT_EQ(CLI::dumpValue<int>(0), QStringLiteral("0"));
    EXPECT_EQ(CLI::dumpValue<long long>(-9000000000LL), QStringLiteral("-9000000000"));
    EXPECT_EQ(CLI::dumpValue<QString>(QStringLiteral("a b")), QStringLiteral("a b"));
}

TEST(ValueTextTest, WrittenNumbersReadBack) {
    for (const int value : {0, 1, -1, 2147483647, -2147483647 - 1})
        EXPECT_EQ(CLI::parseValue<int>(CLI::dumpValue<int>(value)), value);
    for (const long long value : {9223372036854775807LL, -9223372036854775807LL - 1})
        EXPECT_EQ(CLI::parseValue<long long>(CLI::dumpValue<long long>(value)), value);
}

TEST(ValueTextTest, TypeNamesAreReadable) {
    EXPECT_EQ(CLI::TypeName<int>::name(), QStringLiteral("int"));
    EXPECT_EQ(CLI::TypeName<long long>::name(), QStringLiteral("long long"));
    EXPECT_EQ(CLI::TypeName<QString>::name(), QStringLiteral("QString"));
    EXPECT_EQ(CLI::TypeName<double>::name(), QStringLiteral("double"));
    EXPECT_EQ(CLI::TypeName<unsigned short>::name(), QStringLiteral("unsigned short"));
}

TEST(ValueTextTest, TypesWithoutSpecialisationUseTheGenericTextStreamForm) {
    EXPECT_EQ(CLI::parseValue<short>(QStringLiteral("12")), 12);
    EXPECT_EQ(CLI::dumpValue<short>(12), QStringLiteral("12"));
    EXPECT_THAT([] { CLI::parseValue<double>(QStringLiteral("x")); },
                FailedWith<std::runtime_error>("Can not parse \"x\" as double"));
}

} // namespace
