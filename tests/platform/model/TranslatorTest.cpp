#include "platform/model/Translator.h"

#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <QLocale>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::resetTranslator;

// The locale is process-wide: each test starts from, and leaves, a fresh process's translator.
class TranslatorTest : public testing::Test {
protected:
    void SetUp() override { resetTranslator(); }
    void TearDown() override { resetTranslator(); }
};

TEST_F(TranslatorTest, CurrentLocaleIsEmptyBeforeTheFirstIsSet) {
    EXPECT_EQ(Translator::currentLocale(), "");
}

TEST_F(TranslatorTest, SetCurrentLocaleMakesItCurrentAndTheDefaultQLocale) {
    Translator::setCurrentLocale("de_DE");
    EXPECT_EQ(Translator::currentLocale(), "de_DE");
    EXPECT_EQ(QLocale().name(), "de_DE");
    Translator::setCurrentLocale("en_US");
    EXPECT_EQ(Translator::currentLocale(), "en_US");
    EXPECT_EQ(QLocale().name(), "en_US");
}

TEST_F(TranslatorTest, TheCLocaleIsALocale) {
    Translator::setCurrentLocale("C");
    EXPECT_EQ(Translator::currentLocale(), "C");
    EXPECT_EQ(QLocale(), QLocale::c());
}

TEST_F(TranslatorTest, AnUnknownLocaleThrowsAndLeavesTheCurrentOne) {
    Translator::setCurrentLocale("en_US");
    EXPECT_THAT([&] { Translator::setCurrentLocale("klingon"); },
                FailedWith<std::invalid_argument>("Unknown locale: \"klingon\""));
    EXPECT_EQ(Translator::currentLocale(), "en_US");
    EXPECT_EQ(QLocale().name(), "en_US");
}

TEST_F(TranslatorTest, SetCurrentLocaleIsRecordedWithTheLocale) {
    CallLog::clear();
    Translator::setCurrentLocale("en_US");
    Translator::currentLocale();
    EXPECT_EQ(CallLog::entries(), std::vector<std::string>{"Translator::setCurrentLocale(en_US)"});
}

TEST_F(TranslatorTest, ResetForgetsTheLocaleAndGivesQtsDefaultBackToTheSystem) {
    Translator::setCurrentLocale("de_DE");
    resetTranslator();
    EXPECT_EQ(Translator::currentLocale(), "");
    EXPECT_EQ(QLocale(), QLocale::system());
}
