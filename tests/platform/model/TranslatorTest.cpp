#include "platform/model/Translator.h"

#include "platform/foundation/CallLog.h"

#include <QLocale>
#include <gtest/gtest.h>
#include <stdexcept>

using Velmor::Testing::CallLog;

TEST(TranslatorTest, CurrentLocaleIsEmptyBeforeTheFirstIsSet) {
    EXPECT_EQ(Translator::currentLocale(), "");
}

TEST(TranslatorTest, SetCurrentLocaleMakesItCurrentAndTheDefaultQLocale) {
    Translator::setCurrentLocale("de_DE");
    EXPECT_EQ(Translator::currentLocale(), "de_DE");
    EXPECT_EQ(QLocale().name(), "de_DE");
    Translator::setCurrentLocale("en_US");
    EXPECT_EQ(Translator::currentLocale(), "en_US");
    EXPECT_EQ(QLocale().name(), "en_US");
}

TEST(TranslatorTest, TheCLocaleIsALocale) {
    Translator::setCurrentLocale("C");
    EXPECT_EQ(Translator::currentLocale(), "C");
    EXPECT_EQ(QLocale(), QLocale::c());
}

TEST(TranslatorTest, AnUnknownLocaleThrowsAndLeavesTheCurrentOne) {
    Translator::setCurrentLocale("en_US");
    try {
        Translator::setCurrentLocale("klingon");
        FAIL() << "no exception";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "Unknown locale: \"klingon\"");
    }
    EXPECT_EQ(Translator::currentLocale(), "en_US");
    EXPECT_EQ(QLocale().name(), "en_US");
}

TEST(TranslatorTest, SetCurrentLocaleIsRecordedWithTheLocale) {
    CallLog::clear();
    Translator::setCurrentLocale("en_US");
    Translator::currentLocale();
    EXPECT_EQ(CallLog::entries(), std::vector<std::string>{"Translator::setCurrentLocale(en_US)"});
}
