#include "media/SegmentPlan.h"

#include <gtest/gtest.h>

using EditorService::SegmentPlan;

namespace {

// Pictures every `stepUs` from 0.
std::vector<std::int64_t> times(int frames, std::int64_t stepUs = 40000) {
    std::vector<std::int64_t> made;
    for (int i = 0; i < frames; ++i)
        made.push_back(i * stepUs);
    return made;
}

} // namespace

TEST(SegmentPlanTest, PartsAreRunsOfPicturesOfEqualLengthThatFollowOn) {
    const SegmentPlan plan(times(250), std::nullopt, 4);
    ASSERT_EQ(plan.count(), 4);
    EXPECT_EQ(plan.frames(), 250);
    std::int64_t next = 0;
    for (int index = 0; index < 4; ++index) {
        const SegmentPlan::Part part = plan.part(index);
        EXPECT_EQ(part.firstFrame, next);
        EXPECT_NEAR(double(part.frames), 62.5, 0.5);
        EXPECT_EQ(part.fromUs, part.firstFrame * 40000);
        next = part.firstFrame + part.frames;
    }
    EXPECT_EQ(next, 250);
    EXPECT_EQ(plan.part(0).toUs, plan.part(1).fromUs);
    EXPECT_EQ(plan.part(3).toUs, 249 * 40000 + 20000);
}

TEST(SegmentPlanTest, AShortExportHasFewerPartsOfTwoSecondsAtLeast) {
    // Five seconds: two parts of 2 s at least.
    const SegmentPlan plan(times(125), std::nullopt, 8);
    EXPECT_EQ(plan.count(), 2);
    EXPECT_GE(plan.part(0).toUs - plan.part(0).fromUs, SegmentPlan::minimumUs);
    EXPECT_GE(plan.part(1).toUs - plan.part(1).fromUs, SegmentPlan::minimumUs);
}

TEST(SegmentPlanTest, AnExportShorterThanTwoSecondsIsOnePart) {
    const SegmentPlan plan(times(10), std::nullopt, 4);
    EXPECT_EQ(plan.count(), 1);
    EXPECT_EQ(plan.part(0).frames, 10);
}

TEST(SegmentPlanTest, ARangeCountsOnlyItsPicturesAndEndsTheLastPart) {
    const SegmentPlan plan(times(250), std::make_pair(std::int64_t(1000000), std::int64_t(9000000)),
                           2);
    EXPECT_EQ(plan.frames(), 200);
    EXPECT_EQ(plan.part(0).fromUs, 1000000);
    EXPECT_EQ(plan.part(1).firstFrame, 100);
    EXPECT_EQ(plan.part(1).fromUs, 5000000);
    EXPECT_EQ(plan.part(1).toUs, 9000000);
}

TEST(SegmentPlanTest, PicturesOfVariableRateKeepTheirTimes) {
    std::vector<std::int64_t> variable;
    for (int i = 0; i < 300; ++i)
        variable.push_back(i * 33333 + (i % 3) * 7000);
    const SegmentPlan plan(variable, std::nullopt, 3);
    ASSERT_EQ(plan.count(), 3);
    EXPECT_EQ(plan.part(1).fromUs, variable[100]);
    EXPECT_EQ(plan.part(2).fromUs, variable[200]);
    EXPECT_EQ(plan.part(1).toUs, variable[200]);
}

TEST(SegmentPlanTest, APartPastTheCountIsNone) {
    const SegmentPlan plan(times(250), std::nullopt, 4);
    EXPECT_THROW(plan.part(4), std::out_of_range);
}

TEST(SegmentPlanTest, ACutInsideAnUnbrokenRunMovesToItsNearerEnd) {
    // Cuts at 62, 125 and 187 without runs.
    const SegmentPlan plan(times(250), std::nullopt, 4, {{60, 70}, {120, 126}, {186, 200}});
    EXPECT_EQ(plan.part(1).firstFrame, 60);
    EXPECT_EQ(plan.part(2).firstFrame, 126);
    EXPECT_EQ(plan.part(3).firstFrame, 186);
    EXPECT_EQ(plan.part(0).frames, 60);
    EXPECT_EQ(plan.part(0).toUs, plan.part(1).fromUs);
}

TEST(SegmentPlanTest, ACutOnTheEdgeOfARunStaysAndARangeCountsRunsFromItsFirstPicture) {
    EXPECT_EQ(SegmentPlan(times(250), std::nullopt, 2, {{125, 150}}).part(1).firstFrame, 125);
    // The range starts at picture 50; the run 140..160 of the input is 90..110 of the export.
    const SegmentPlan plan(
        times(250), std::make_pair(std::int64_t(2000000), std::int64_t(10000000)), 2, {{140, 160}});
    EXPECT_EQ(plan.part(1).firstFrame, 90);
    EXPECT_EQ(plan.part(1).fromUs, 140 * 40000);
}
