#include "platform/render/ProgressMeter.h"

#include <gtest/gtest.h>
#include <vector>

using Velmor::Render::Progress;
using Velmor::Render::ProgressMeter;
using namespace std::chrono_literals;

TEST(ProgressMeterTest, TheShareIsWhatIsDoneOfWhatIsExpected) {
    const Progress value = ProgressMeter::at(50, 1000, 4000, 2.0);
    EXPECT_DOUBLE_EQ(value.progress, 0.25);
    EXPECT_EQ(value.frames, 50);
    EXPECT_DOUBLE_EQ(value.fps, 25.0);
}

TEST(ProgressMeterTest, TheShareStaysWithinZeroAndOne) {
    EXPECT_DOUBLE_EQ(ProgressMeter::at(10, 4100, 4000, 1).progress, 1.0);
    EXPECT_DOUBLE_EQ(ProgressMeter::at(1, -40, 4000, 1).progress, 0.0);
}

TEST(ProgressMeterTest, NothingExpectedIsNoProgressAndNoTimeIsNoRate) {
    const Progress value = ProgressMeter::at(3, 120, 0, 0);
    EXPECT_DOUBLE_EQ(value.progress, 0.0);
    EXPECT_DOUBLE_EQ(value.fps, 0.0);
}

TEST(ProgressMeterTest, TheRateCountsFromWhenTheMeterWasMadeOnItsClock) {
    std::chrono::steady_clock::time_point now{};
    std::vector<Progress> reported;
    ProgressMeter meter(
        2000, [&](const Progress& value) { reported.push_back(value); }, [&] { return now; });
    now += 2s;
    meter.update(50, 1000);
    now += 2s;
    meter.update(100, 2000);
    ASSERT_EQ(reported.size(), 2u);
    EXPECT_DOUBLE_EQ(reported[0].fps, 25.0);
    EXPECT_DOUBLE_EQ(reported[0].progress, 0.5);
    EXPECT_DOUBLE_EQ(reported[1].fps, 25.0);
    EXPECT_DOUBLE_EQ(reported[1].progress, 1.0);
    EXPECT_EQ(reported[1].frames, 100);
}
