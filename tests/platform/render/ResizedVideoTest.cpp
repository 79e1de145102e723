#include "platform/render/ResizedVideo.h"

#include "platform/av/Frame.h"
#include "platform/av/Picture.h"
#include "tests/platform/render/FakeStages.h"

#include <gtest/gtest.h>

using EditorService::Testing::FakeVideo;
using Velmor::AV::Frame;
using Velmor::Proc::SettingsResizer;
using Velmor::Render::ResizedVideo;
using Velmor::Render::Stop;

namespace {

SettingsResizer resizing(int width, int height) {
    SettingsResizer settings;
    settings.width = width;
    settings.height = height;
    settings.pixelFormat = Velmor::AV::pixelFormat("yuv420p");
    return settings;
}

} // namespace

TEST(ResizedVideoTest, PicturesComeOutInTheSettingsSizeWithTheirTimes) {
    Stop stop;
    FakeVideo source(3, stop);
    ResizedVideo resized(source, resizing(32, 24), 1);
    EXPECT_EQ(resized.format().width, 32);
    EXPECT_EQ(resized.format().height, 24);
    EXPECT_EQ(resized.format().frameRate, source.format().frameRate);
    EXPECT_EQ(resized.format().timeBase, source.format().timeBase);
    Frame picture;
    for (std::int64_t time = 0; time < 3; ++time) {
        ASSERT_TRUE(resized.next(picture));
        EXPECT_EQ(picture.width(), 32);
        EXPECT_EQ(picture.height(), 24);
        EXPECT_EQ(picture.timestamp(), time);
    }
    EXPECT_FALSE(resized.next(picture));
}

TEST(ResizedVideoTest, FinishingItFinishesItsSource) {
    Stop stop;
    FakeVideo source(3, stop);
    ResizedVideo resized(source, resizing(16, 16), 1);
    resized.finish();
    EXPECT_TRUE(source.finished);
}
