#include "host/ProgressLine.h"

#include <cstdio>
#include <gtest/gtest.h>

TEST(ProgressLineTest, DescribesPercentageFramesPerSecondAndTimeLeftFromTheFramesSoFar) {
    // 120 frames at 60 fps are 2 s; half done leaves as much again.
    EXPECT_EQ(ProgressLine::describe(
                  {{"output", "a.mp4"}, {"progress", 0.5}, {"frames", 120}, {"fps", 60.0}}),
              "a.mp4 50% 60 fps 2 s left");
}

TEST(ProgressLineTest, RoundsThePercentageAndTheRate) {
    EXPECT_EQ(ProgressLine::describe(
                  {{"output", "b.mp4"}, {"progress", 0.126}, {"frames", 63}, {"fps", 29.6}}),
              "b.mp4 13% 30 fps 15 s left");
}

TEST(ProgressLineTest, ShowsDashesForTheTimeLeftBeforeAnyFrameOrRate) {
    EXPECT_EQ(ProgressLine::describe({{"output", "c.mp4"}, {"progress", 0.0}, {"frames", 0}}),
              "c.mp4 0% 0 fps -- left");
}

TEST(ProgressLineTest, WritesNothingWhenTheStreamIsNotATerminal) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ProgressLine line(file);
    line.show({{"export", {{"output", "a.mp4"}, {"progress", 0.5}, {"frames", 1}, {"fps", 1.0}}}});
    line.clear();
    std::fflush(file);
    EXPECT_EQ(std::ftell(file), 0);
    std::fclose(file);
}
