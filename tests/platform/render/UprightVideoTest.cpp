#include "platform/render/UprightVideo.h"

#include "platform/av/Frame.h"
#include "tests/platform/render/FakeStages.h"

#include <gtest/gtest.h>

using EditorService::Testing::FakeVideo;
using Velmor::AV::Frame;
using Velmor::Render::Stop;
using Velmor::Render::UprightVideo;
using Velmor::Render::VideoFormat;

namespace {

// Square pictures stored with a rotation and a pixel shape.
class ShapedVideo : public FakeVideo {
public:
    ShapedVideo(int rotation, Velmor::AV::Rational pixel, const Stop& stop)
        : FakeVideo(2, stop)
        , rotation(rotation)
        , pixel(pixel) {}

    VideoFormat format() const override {
        VideoFormat format = FakeVideo::format();
        format.rotation = rotation;
        format.sampleAspectRatio = pixel;
        return format;
    }

    const int rotation;
    const Velmor::AV::Rational pixel;
};

} // namespace

TEST(UprightVideoTest, PicturesComeOutTurnedInSquarePixelsWithTheirTimes) {
    Stop stop;
    ShapedVideo source(-90, {2, 1}, stop);
    UprightVideo upright(source);
    const VideoFormat format = upright.format();
    EXPECT_EQ(format.width, 16);
    EXPECT_EQ(format.height, 32);
    EXPECT_EQ(format.rotation, 0);
    EXPECT_EQ(format.sampleAspectRatio, (Velmor::AV::Rational{1, 1}));
    EXPECT_EQ(format.timeBase, source.format().timeBase);
    Frame picture;
    for (std::int64_t time = 0; time < 2; ++time) {
        ASSERT_TRUE(upright.next(picture));
        EXPECT_EQ(picture.width(), 16);
        EXPECT_EQ(picture.height(), 32);
        EXPECT_EQ(picture.timestamp(), time);
    }
    EXPECT_FALSE(upright.next(picture));
}

TEST(UprightVideoTest, PicturesThatShowAsStoredPassThrough) {
    Stop stop;
    FakeVideo source(1, stop);
    UprightVideo upright(source);
    EXPECT_EQ(upright.format().width, 16);
    EXPECT_EQ(upright.format().height, 16);
    Frame picture;
    ASSERT_TRUE(upright.next(picture));
    EXPECT_EQ(picture.width(), 16);
}

TEST(UprightVideoTest, FinishingItFinishesItsSource) {
    Stop stop;
    FakeVideo source(3, stop);
    UprightVideo upright(source);
    upright.finish();
    EXPECT_TRUE(source.finished);
}
