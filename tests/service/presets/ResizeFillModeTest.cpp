#include "service/requests/ResizeFillMode.h"

#include "platform/proc/IResize.h"
#include "service/api/Error.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using EditorService::Error;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using Velmor::Proc::SettingsResizer;

namespace {

const char* const allModes = "Fit,Fill,Stretch,FitWidth,FitHeight,Center";

std::exception_ptr readFailure(SettingsResizer::CustomModes& mode, const QString& text) {
    return failureOf([&] { mode << text; });
}

TEST(ResizeFillModeTest, ListHoldsTheSixNamesInNumberOrder) {
    const QStringList& names = resizeFillModeList();
    ASSERT_EQ(names.size(), 6);
    for (int number = 0; number < 6; ++number) {
        EXPECT_EQ(names.at(number).toStdString(),
                  Velmor::Proc::IResize::CustomModes2String(
                      static_cast<SettingsResizer::CustomModes>(number)));
    }
}

TEST(ResizeFillModeTest, ListIsTheSameObjectOnEveryCall) {
    EXPECT_EQ(&resizeFillModeList(), &resizeFillModeList());
}

TEST(ResizeFillModeTest, EveryNameReadAndWrittenGivesTheSameName) {
    for (const QString& name : resizeFillModeList()) {
        SettingsResizer::CustomModes mode = SettingsResizer::Fit;
        mode << name;
        QString text;
        mode >> text;
        EXPECT_EQ(text, name);
    }
}

TEST(ResizeFillModeTest, ReadingSetsTheNamedMode) {
    SettingsResizer::CustomModes mode = SettingsResizer::Fit;
    mode << QStringLiteral("Center");
    EXPECT_EQ(mode, SettingsResizer::Center);
}

TEST(ResizeFillModeTest, WritingReplacesWhatTheTextHeld) {
    const SettingsResizer::CustomModes mode = SettingsResizer::Stretch;
    QString text = QStringLiteral("something long before");
    mode >> text;
    EXPECT_EQ(text, QStringLiteral("Stretch"));
}

struct FailureRow {
    const char* name;
    QString text;
};

void PrintTo(const FailureRow& row, std::ostream* out) {
    *out << row.name;
}

class ResizeFillModeFailureTest : public testing::TestWithParam<FailureRow> {};

TEST_P(ResizeFillModeFailureTest, FailsWithEveryNameAndLeavesTheMode) {
    SettingsResizer::CustomModes mode = SettingsResizer::FitHeight;
    EXPECT_THAT(readFailure(mode, GetParam().text),
                FailedWith<Error>("Can not parse preset resize mode \""
                                  + GetParam().text.toStdString() + "\", expects one of "
                                  + allModes));
    EXPECT_EQ(mode, SettingsResizer::FitHeight);
}

INSTANTIATE_TEST_SUITE_P(Texts, ResizeFillModeFailureTest,
                         testing::Values(FailureRow{"Empty", QString()},
                                         FailureRow{"LowerCase", QStringLiteral("fit")},
                                         FailureRow{"UpperCase", QStringLiteral("CENTER")},
                                         FailureRow{"LeadingBlank", QStringLiteral(" Fit")},
                                         FailureRow{"Number", QStringLiteral("0")},
                                         FailureRow{"TwoNames", QStringLiteral("Fit,Fill")},
                                         FailureRow{"Unknown", QStringLiteral("Letterbox")},
                                         FailureRow{"PlaceholderOne", QStringLiteral("%1")},
                                         FailureRow{"PlaceholderTwo", QStringLiteral("%2")},
                                         FailureRow{"PlaceholderInside", QStringLiteral("a%1b")},
                                         FailureRow{"BothPlaceholders", QStringLiteral("%2%1")}),
                         [](const testing::TestParamInfo<FailureRow>& row) {
                             return std::string(row.param.name);
                         });

TEST(ResizeFillModeTest, OptionFieldsAndJsonUseTheName) {
    using EditorService::CLI::dumpValue;
    using EditorService::CLI::parseValue;
    EXPECT_EQ(parseValue<SettingsResizer::CustomModes>(QStringLiteral("FitWidth")),
              SettingsResizer::FitWidth);
    EXPECT_EQ(dumpValue(SettingsResizer::FitWidth), QStringLiteral("FitWidth"));
    EXPECT_THROW(parseValue<SettingsResizer::CustomModes>(QString()), Error);

    nlohmann::json value;
    Serialize::Json::detail::save(value, SettingsResizer::Center);
    EXPECT_EQ(value, "Center");
    SettingsResizer::CustomModes mode = SettingsResizer::Fit;
    Serialize::Json::detail::load(value, mode);
    EXPECT_EQ(mode, SettingsResizer::Center);
    EXPECT_THROW(Serialize::Json::detail::load(nlohmann::json(5), mode),
                 nlohmann::json::type_error);
    EXPECT_EQ(mode, SettingsResizer::Center);
}

TEST(ResizeFillModeTest, ConcurrentFirstCallsShareOneList) {
    constexpr int threadCount = 8;
    std::vector<const QStringList*> seen(threadCount, nullptr);
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index)
        threads.emplace_back([&seen, index] { seen[index] = &resizeFillModeList(); });
    for (auto& thread : threads)
        thread.join();
    for (const QStringList* list : seen) {
        EXPECT_EQ(list, seen.front());
        EXPECT_EQ(list->join(QLatin1Char(',')).toStdString(), allModes);
    }
}

} // namespace
