#include "service/requests/ValueForms.h"

#include "service/api/Error.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using namespace EditorService::CLI::extension;
using EditorService::Error;

namespace {

std::exception_ptr rangeFailure(const QString& text) {
    return failureOf([&] { parseRange(text); });
}

std::exception_ptr frameSizeFailure(const QString& text) {
    return failureOf([&] { parseFrameSize(text); });
}

TEST(ValueFormsTest, EmptyTextIsTheDefaultRangeBothWays) {
    EXPECT_EQ(parseRange(QString()), Types::Range());
    EXPECT_EQ(dumpRange(Types::Range()), QString());
}

TEST(ValueFormsTest, RangeIsWrittenAsTwoMilliseconds) {
    EXPECT_EQ(dumpRange(Types::Range(1500, 90000)), QStringLiteral("1500:90000"));
    EXPECT_EQ(parseRange(QStringLiteral("1500:90000")), Types::Range(1500, 90000));
}

TEST(ValueFormsTest, RangeBoundsAreNotOrdered) {
    const Types::Range range = parseRange(QStringLiteral("9000:10"));
    EXPECT_EQ(range.start(), 9000);
    EXPECT_EQ(range.end(), 10);
}

TEST(ValueFormsTest, ZeroRangeIsARange) {
    EXPECT_EQ(parseRange(QStringLiteral("0:0")), Types::Range(0, 0));
    EXPECT_NE(parseRange(QStringLiteral("0:0")), Types::Range());
    EXPECT_EQ(dumpRange(Types::Range(0, 0)), QStringLiteral("0:0"));
}

TEST(ValueFormsTest, LargestRangeBoundsAreWrittenInFull) {
    const Types::Range range(9223372036854775807LL, 9223372036854775807LL);
    EXPECT_EQ(dumpRange(range), QStringLiteral("9223372036854775807:9223372036854775807"));
    EXPECT_EQ(parseRange(dumpRange(range)), range);
}

TEST(ValueFormsTest, NegativeRangeMadeInCodeCannotBeReadBack) {
    EXPECT_EQ(dumpRange(Types::Range(-5, 10)), QStringLiteral("-5:10"));
    EXPECT_THAT(rangeFailure(QStringLiteral("-5:10")),
                FailedWith<Error>("Can not parse range \"-5:10\", expects \"ms:ms\""));
}

TEST(ValueFormsTest, RangeBoundOfTwentyDigitsBeginsAtZero) {
    const Types::Range range = parseRange(QStringLiteral("12345678901234567890:500"));
    EXPECT_EQ(range.start(), 0);
    EXPECT_EQ(range.end(), 500);
}

TEST(ValueFormsTest, EmptyTextAndOriginalAreTheOriginalSize) {
    EXPECT_TRUE(parseFrameSize(QString()).isOriginal());
    EXPECT_TRUE(parseFrameSize(QStringLiteral("original")).isOriginal());
}

TEST(ValueFormsTest, OriginalSizeIsWrittenAsTheEmptyText) {
    EXPECT_EQ(dumpFrameSize(PresetFrameSize()), QString());
    EXPECT_TRUE(parseFrameSize(dumpFrameSize(PresetFrameSize())).isOriginal());
}

TEST(ValueFormsTest, ZeroByZeroIsAnEvenSizeNotTheOriginal) {
    const PresetFrameSize size = parseFrameSize(QStringLiteral("0:0"));
    EXPECT_EQ(size, PresetFrameSize(0, 0));
    EXPECT_TRUE(size.isEven());
    EXPECT_FALSE(size.isOriginal());
}

TEST(ValueFormsTest, FrameSizeIsWrittenBackAsRead) {
    EXPECT_EQ(dumpFrameSize(parseFrameSize(QStringLiteral("1920:1080"))),
              QStringLiteral("1920:1080"));
}

TEST(ValueFormsTest, LeadingZeroIsReadAndNotWritten) {
    const PresetFrameSize size = parseFrameSize(QStringLiteral("01920:1080"));
    EXPECT_EQ(size, PresetFrameSize(1920, 1080));
    EXPECT_EQ(dumpFrameSize(size), QStringLiteral("1920:1080"));
}

TEST(ValueFormsTest, WidthBeyond32BitsIsZero) {
    const PresetFrameSize size = parseFrameSize(QStringLiteral("4294967296:1080"));
    EXPECT_EQ(size.width, 0);
    EXPECT_EQ(size.height, 1080);
}

TEST(ValueFormsTest, OneSideAtMinusOneIsWrittenAndCannotBeReadBack) {
    const PresetFrameSize size(-1, 1080);
    EXPECT_EQ(dumpFrameSize(size), QStringLiteral("-1:1080"));
    EXPECT_THAT(
        frameSizeFailure(dumpFrameSize(size)),
        FailedWith<Error>("Can not parse frame size \"-1:1080\", expects \"width:height\""));
}

struct FailureRow {
    const char* name;
    QString text;
};

void PrintTo(const FailureRow& row, std::ostream* out) {
    *out << row.name;
}

std::string rowName(const testing::TestParamInfo<FailureRow>& row) {
    return row.param.name;
}

const auto unreadablePairs = testing::Values(
    FailureRow{"Negative", QStringLiteral("-1920:1080")},
    FailureRow{"NegativeSecond", QStringLiteral("1920:-1080")},
    FailureRow{"PlusSign", QStringLiteral("+1920:1080")},
    FailureRow{"LeadingBlank", QStringLiteral(" 1920:1080")},
    FailureRow{"TrailingBlank", QStringLiteral("1920:1080 ")},
    FailureRow{"BlankAroundColon", QStringLiteral("1920 : 1080")},
    FailureRow{"ThreeNumbers", QStringLiteral("1920:1080:25")},
    FailureRow{"OneNumberWithColon", QStringLiteral("1920:")},
    FailureRow{"ColonWithOneNumber", QStringLiteral(":1080")},
    FailureRow{"OneNumber", QStringLiteral("1920")}, FailureRow{"Colon", QStringLiteral(":")},
    FailureRow{"OtherSeparator", QStringLiteral("1920x1080")},
    FailureRow{"Letters", QStringLiteral("wide:high")},
    FailureRow{"DecimalPoint", QStringLiteral("19.5:10")},
    FailureRow{"ArabicIndicDigits", QString::fromUtf8("\u0661:\u0662")},
    FailureRow{"FullwidthDigits", QString::fromUtf8("\uff11:\uff12")},
    FailureRow{"PercentSign", QStringLiteral("%1:%2")});

class ValueFormsRangeFailureTest : public testing::TestWithParam<FailureRow> {};

TEST_P(ValueFormsRangeFailureTest, FailsWithTheRangeMessage) {
    const QString& text = GetParam().text;
    EXPECT_THAT(rangeFailure(text),
                FailedWith<Error>(QStringLiteral("Can not parse range \"%1\", expects \"ms:ms\"")
                                      .arg(text)
                                      .toStdString()));
}

INSTANTIATE_TEST_SUITE_P(Texts, ValueFormsRangeFailureTest, unreadablePairs, rowName);

class ValueFormsFrameSizeFailureTest : public testing::TestWithParam<FailureRow> {};

TEST_P(ValueFormsFrameSizeFailureTest, FailsWithTheFrameSizeMessage) {
    const QString& text = GetParam().text;
    EXPECT_THAT(frameSizeFailure(text),
                FailedWith<Error>(
                    QStringLiteral("Can not parse frame size \"%1\", expects \"width:height\"")
                        .arg(text)
                        .toStdString()));
}

INSTANTIATE_TEST_SUITE_P(Texts, ValueFormsFrameSizeFailureTest, unreadablePairs, rowName);
INSTANTIATE_TEST_SUITE_P(OriginalSpellings, ValueFormsFrameSizeFailureTest,
                         testing::Values(FailureRow{"Capitalised", QStringLiteral("Original")},
                                         FailureRow{"UpperCase", QStringLiteral("ORIGINAL")},
                                         FailureRow{"WithBlank", QStringLiteral("original ")}),
                         rowName);

TEST(ValueFormsTest, OptionFieldsReadAndWriteTheForms) {
    using EditorService::CLI::dumpValue;
    using EditorService::CLI::parseValue;
    EXPECT_EQ(parseValue<Types::Range>(QStringLiteral("10:20")), Types::Range(10, 20));
    EXPECT_EQ(parseValue<Types::Range>(QString()), Types::Range());
    EXPECT_EQ(dumpValue(Types::Range(10, 20)), QStringLiteral("10:20"));
    EXPECT_EQ(parseValue<PresetFrameSize>(QStringLiteral("original")), PresetFrameSize());
    EXPECT_EQ(dumpValue(PresetFrameSize(640, 360)), QStringLiteral("640:360"));
    EXPECT_THROW(parseValue<PresetFrameSize>(QStringLiteral("640")), Error);
    EXPECT_EQ(EditorService::CLI::TypeName<PresetFrameSize>::name(),
              QStringLiteral("PresetFrameSize"));
    EXPECT_EQ(EditorService::CLI::TypeName<Types::Range>::name(), QStringLiteral("Types::Range"));
}

TEST(ValueFormsTest, JsonHoldsTheSameTexts) {
    nlohmann::json value;
    Serialize::Json::detail::save(value, Types::Range(10, 20));
    EXPECT_EQ(value, "10:20");
    Types::Range range;
    Serialize::Json::detail::load(value, range);
    EXPECT_EQ(range, Types::Range(10, 20));

    Serialize::Json::detail::save(value, PresetFrameSize());
    EXPECT_EQ(value, "");
    PresetFrameSize size(2, 2);
    Serialize::Json::detail::load(value, size);
    EXPECT_TRUE(size.isOriginal());
    Serialize::Json::detail::load(nlohmann::json("1280:720"), size);
    EXPECT_EQ(size, PresetFrameSize(1280, 720));

    EXPECT_THROW(Serialize::Json::detail::load(nlohmann::json(1280), size),
                 nlohmann::json::type_error);
    EXPECT_THROW(Serialize::Json::detail::load(nlohmann::json("1:2:3"), range), Error);
}

TEST(ValueFormsTest, FailureQuotesTheTextAsItCame) {
    EXPECT_THAT(
        frameSizeFailure(QStringLiteral("ORIGINAL")),
        FailedWith<Error>("Can not parse frame size \"ORIGINAL\", expects \"width:height\""));
    EXPECT_THAT(rangeFailure(QStringLiteral(" 1:2")),
                FailedWith<Error>("Can not parse range \" 1:2\", expects \"ms:ms\""));
}

} // namespace
