#include "platform/mix/SampleTimes.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Mixing::SampleTimes;

namespace {

TEST(SampleTimesTest, ATimeMapsToTheFirstSampleAtOrAfterIt) {
    const SampleTimes times(48000);
    EXPECT_EQ(times.rate(), 48000);
    EXPECT_EQ(times.sampleAt(0), 0);
    EXPECT_EQ(times.sampleAt(1), 48);
    EXPECT_EQ(times.sampleAt(1000), 48000);
    const SampleTimes cd(44100);
    EXPECT_EQ(cd.sampleAt(1), 45);
    EXPECT_EQ(cd.sampleAt(10), 441);
    EXPECT_EQ(cd.sampleAt(-1), -44);
}

TEST(SampleTimesTest, TenHoursAreExact) {
    EXPECT_EQ(SampleTimes(44100).sampleAt(36000000), std::int64_t(44100) * 36000);
}

TEST(SampleTimesTest, TheRateMustBePositive) {
    EXPECT_THAT([] { SampleTimes(0); },
                FailedWith<std::invalid_argument>("A sample rate must be positive, not 0"));
}

} // namespace
