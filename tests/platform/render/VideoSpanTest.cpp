#include "platform/render/VideoSpan.h"

#include "platform/av/Rational.h"

#include <gtest/gtest.h>

using Velmor::AV::noTimestamp;
using Velmor::Render::VideoSpan;
using Place = VideoSpan::Place;

TEST(VideoSpanTest, PicturesBeforeTheSpanAreDroppedAndTheFirstInsideIsAtZero) {
    VideoSpan span(1000, 5000, 512);
    std::int64_t time = 488;
    EXPECT_EQ(span.place(time), Place::Before);
    EXPECT_EQ(span.first(), noTimestamp);
    time = 1024;
    EXPECT_EQ(span.place(time), Place::Inside);
    EXPECT_EQ(time, 0);
    EXPECT_EQ(span.first(), 1024);
    time = 1536;
    EXPECT_EQ(span.place(time), Place::Inside);
    EXPECT_EQ(time, 512);
}

TEST(VideoSpanTest, APictureAtTheStartIsInsideAndOneAtTheEndIsPastIt) {
    VideoSpan span(1000, 2000, 500);
    std::int64_t time = 1000;
    EXPECT_EQ(span.place(time), Place::Inside);
    EXPECT_EQ(time, 0);
    time = 1999;
    EXPECT_EQ(span.place(time), Place::Inside);
    EXPECT_EQ(time, 999);
    time = 2000;
    EXPECT_EQ(span.place(time), Place::After);
}

TEST(VideoSpanTest, AnUnknownTimeIsOneFrameAfterTheLastOrTheStartForTheFirst) {
    VideoSpan span(100, 10000, 40);
    std::int64_t time = noTimestamp;
    EXPECT_EQ(span.place(time), Place::Inside);
    EXPECT_EQ(time, 0);
    EXPECT_EQ(span.first(), 100);
    time = noTimestamp;
    EXPECT_EQ(span.place(time), Place::Inside);
    EXPECT_EQ(time, 40);
}

TEST(VideoSpanTest, AnUnknownTimeFollowsAPictureDroppedBeforeTheSpan) {
    VideoSpan span(100, 10000, 40);
    std::int64_t time = 80;
    EXPECT_EQ(span.place(time), Place::Before);
    time = noTimestamp;
    EXPECT_EQ(span.place(time), Place::Inside);
    EXPECT_EQ(time, 0);
    EXPECT_EQ(span.first(), 120);
}

TEST(VideoSpanTest, VariableGapsKeepTheirTiming) {
    VideoSpan span(0, 100000, 1);
    for (const std::int64_t input : {7, 10, 25, 26}) {
        std::int64_t time = input;
        EXPECT_EQ(span.place(time), Place::Inside);
        EXPECT_EQ(time, input - 7);
    }
}
