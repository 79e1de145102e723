#include "platform/av/Rational.h"

#include <gtest/gtest.h>

using namespace Velmor::AV;

TEST(RationalTest, RescalesBetweenTimeBasesRoundingToTheNearest) {
    EXPECT_EQ(rescale(512, {1, 12800}, {1, 1000}), 40);
    EXPECT_EQ(rescale(1, {1, 3}, {1, 1000}), 333);
    EXPECT_EQ(rescale(2, {1, 3}, {1, 1000}), 667);
}

TEST(RationalTest, AnUnknownTimestampStaysUnknown) {
    EXPECT_EQ(rescale(noTimestamp, {1, 25}, {1, 1000}), noTimestamp);
}
