#include "platform/project/FrameTimes.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using Project::FrameTimes;

namespace {

TEST(FrameTimesTest, ATimeMapsToTheFirstFrameStartingAtOrAfterIt) {
    const FrameTimes times({25, 1});
    EXPECT_EQ(times.frameAt(0), 0);
    EXPECT_EQ(times.frameAt(1), 1);
    EXPECT_EQ(times.frameAt(40), 1);
    EXPECT_EQ(times.frameAt(41), 2);
    EXPECT_EQ(times.frameAt(16000), 400);
}

TEST(FrameTimesTest, NtscRatesStayExact) {
    const FrameTimes times({30000, 1001});
    EXPECT_EQ(times.frameAt(1001), 30);
    EXPECT_EQ(times.frameAt(1002), 31);
    EXPECT_EQ(times.frameAt(3600 * 1001), 108000);
    EXPECT_DOUBLE_EQ(times.startOf(30), 1001);
}

TEST(FrameTimesTest, ProgressRunsOverAnInterval) {
    const FrameTimes times({25, 1});
    EXPECT_DOUBLE_EQ(times.progress(25, 1000, 1000), 0);
    EXPECT_DOUBLE_EQ(times.progress(30, 1000, 1000), 0.2);
    EXPECT_DOUBLE_EQ(times.progress(50, 1000, 1000), 1);
}

TEST(FrameTimesTest, ARateMustBePositive) {
    EXPECT_THAT(
        [] {
            FrameTimes({0, 1});
        },
        FailedWith<std::invalid_argument>("A frame rate must be positive, not 0/1"));
}

} // namespace
