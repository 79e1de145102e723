#include "platform/proc/IResize.h"

#include <gtest/gtest.h>
#include <set>
#include <stdexcept>

using Velmor::Proc::IResize;
using Velmor::Proc::SettingsResizer;

namespace {

TEST(IResizeTest, EveryModeHasItsOwnAsciiName) {
    std::set<std::string> names;
    for (int number = 0; number < 6; ++number) {
        const std::string& name =
            IResize::CustomModes2String(static_cast<SettingsResizer::CustomModes>(number));
        EXPECT_FALSE(name.empty());
        for (char c : name)
            EXPECT_TRUE(static_cast<unsigned char>(c) < 0x80) << name;
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 6u);
}

TEST(IResizeTest, NamesAreFixedInNumberOrder) {
    EXPECT_EQ(IResize::CustomModes2String(SettingsResizer::Fit), "Fit");
    EXPECT_EQ(IResize::CustomModes2String(SettingsResizer::Fill), "Fill");
    EXPECT_EQ(IResize::CustomModes2String(SettingsResizer::Stretch), "Stretch");
    EXPECT_EQ(IResize::CustomModes2String(SettingsResizer::FitWidth), "FitWidth");
    EXPECT_EQ(IResize::CustomModes2String(SettingsResizer::FitHeight), "FitHeight");
    EXPECT_EQ(IResize::CustomModes2String(SettingsResizer::Center), "Center");
}

TEST(IResizeTest, NameGivesBackItsMode) {
    for (int number = 0; number < 6; ++number) {
        const auto mode = static_cast<SettingsResizer::CustomModes>(number);
        EXPECT_EQ(IResize::String2CustomModes(IResize::CustomModes2String(mode)), mode);
    }
}

TEST(IResizeTest, NameIsComparedWithCase) {
    EXPECT_THROW(IResize::String2CustomModes("fit"), std::invalid_argument);
    EXPECT_THROW(IResize::String2CustomModes(""), std::invalid_argument);
}

TEST(IResizeTest, NumberOutsideTheModesHasNoName) {
    EXPECT_THROW(IResize::CustomModes2String(static_cast<SettingsResizer::CustomModes>(6)),
                 std::out_of_range);
    EXPECT_THROW(IResize::CustomModes2String(static_cast<SettingsResizer::CustomModes>(-1)),
                 std::out_of_range);
}

} // namespace
