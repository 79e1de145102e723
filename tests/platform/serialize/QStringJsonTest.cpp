#include "platform/serialize/QStringJson.h"

#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>

using EditorService::Testing::FailedWith;

namespace {

struct TextRow {
    const char* name;
    QString text;
    std::string utf8;
};

void PrintTo(const TextRow& row, std::ostream* out) {
    *out << row.name;
}

class QStringJsonTest : public testing::TestWithParam<TextRow> {};

TEST_P(QStringJsonTest, IsAJsonStringOfItsUtf8) {
    const nlohmann::json value = GetParam().text;

    ASSERT_TRUE(value.is_string());
    EXPECT_EQ(value.get<std::string>(), GetParam().utf8);
}

TEST_P(QStringJsonTest, ReadsBackWithNothingLost) {
    const nlohmann::json value = GetParam().text;

    const auto text = value.get<QString>();

    EXPECT_EQ(text, GetParam().text);
    EXPECT_EQ(text.size(), GetParam().text.size());
}

TEST_P(QStringJsonTest, SurvivesADumpAndAParse) {
    const nlohmann::json value = GetParam().text;

    EXPECT_EQ(nlohmann::json::parse(value.dump()).get<QString>(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, QStringJsonTest,
    testing::Values(TextRow{"Empty", QString(), ""}, TextRow{"Ascii", "a b", "a b"},
                    TextRow{"Latin", QString::fromUtf8("Grüße"), "Grüße"},
                    TextRow{"OutsideTheBasicPlane", QString::fromUtf8("😀✓"), "😀✓"},
                    TextRow{"EmbeddedNul", QString::fromLatin1("a\0b", 3), std::string("a\0b", 3)},
                    TextRow{"ControlCharacters", "\t\n\x01", "\t\n\x01"},
                    TextRow{"Quotes", "\"\\", "\"\\"}),
    [](const testing::TestParamInfo<TextRow>& info) { return std::string(info.param.name); });

TEST(QStringJsonConversionTest, AnythingButAStringRaisesTypeError) {
    for (const char* document : {"5", "null", "true", "[]", "{}", "1.5"}) {
        const auto value = nlohmann::json::parse(document);
        EXPECT_THAT([&] { value.get<QString>(); },
                    FailedWith<nlohmann::json::type_error>(
                        std::string("[json.exception.type_error.302] type must be string, but is ")
                        + value.type_name()))
            << document;
    }
}

TEST(QStringJsonConversionTest, UnpairedSurrogateIsReplaced) {
    const QChar unpaired[] = {QChar('a'), QChar(0xD800), QChar('z')};
    const nlohmann::json value = QString(unpaired, 3);

    EXPECT_EQ(value.get<QString>().size(), 3);
    EXPECT_EQ(value.get<QString>().at(0), QChar('a'));
    EXPECT_NE(value.get<QString>().at(1), QChar(0xD800));
}

TEST(QStringJsonConversionTest, InvalidUtf8IsReplaced) {
    const nlohmann::json value = std::string("a\xff", 2);

    EXPECT_EQ(value.get<QString>(), QStringLiteral("a") + QChar(QChar::ReplacementCharacter));
}

} // namespace
