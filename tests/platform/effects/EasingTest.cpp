#include "platform/effects/Easing.h"

#include <gtest/gtest.h>

using namespace Effects;

namespace {

TEST(EasingTest, NamesAreInTheOrderOfTheEnumeration) {
    EXPECT_EQ(easingNames(),
              (std::vector<std::string>{"linear", "ease-in", "ease-out", "ease-in-out"}));
    EXPECT_EQ(easingNamed("ease-out"), Easing::EaseOut);
    EXPECT_EQ(easingName(Easing::EaseInOut), "ease-in-out");
    EXPECT_FALSE(easingNamed("Linear"));
}

TEST(EasingTest, EveryEasingRunsFromNothingToAll) {
    for (const Easing easing :
         {Easing::Linear, Easing::EaseIn, Easing::EaseOut, Easing::EaseInOut}) {
        EXPECT_DOUBLE_EQ(ease(easing, 0), 0);
        EXPECT_DOUBLE_EQ(ease(easing, 1), 1);
        EXPECT_DOUBLE_EQ(ease(easing, -1), 0);
        EXPECT_DOUBLE_EQ(ease(easing, 2), 1);
    }
}

TEST(EasingTest, EaseInStartsSlowAndEaseOutEndsSlow) {
    EXPECT_DOUBLE_EQ(ease(Easing::Linear, 0.25), 0.25);
    EXPECT_LT(ease(Easing::EaseIn, 0.25), 0.25);
    EXPECT_GT(ease(Easing::EaseOut, 0.25), 0.25);
    EXPECT_DOUBLE_EQ(ease(Easing::EaseInOut, 0.5), 0.5);
    EXPECT_NEAR(ease(Easing::EaseInOut, 0.2) + ease(Easing::EaseInOut, 0.8), 1, 1e-12);
}

} // namespace
