#include "platform/effects/Slide.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Effects::Slide;

namespace {

// Each column (or row) of luma numbered, so that a shift shows.
Velmor::AV::Frame numbered(int offset) {
    auto picture = uniformPicture(32, 16, 0);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x)
            setSample(picture, 0, x, y, static_cast<std::uint8_t>(offset + x + 32 * (y % 2)));
    return picture;
}

TEST(SlideTest, SlideLeftPushesTheOutgoingPictureOutToTheLeft) {
    const auto outgoing = numbered(0);
    const auto incoming = numbered(100);
    auto target = uniformPicture(32, 16, 0);
    Slide(Slide::Direction::Left).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 8);
    EXPECT_EQ(sampleAt(target, 0, 23, 0), 31);
    EXPECT_EQ(sampleAt(target, 0, 24, 0), 100);
    EXPECT_EQ(sampleAt(target, 0, 31, 0), 107);
}

TEST(SlideTest, SlideRightPushesTheOutgoingPictureOutToTheRight) {
    const auto outgoing = numbered(0);
    const auto incoming = numbered(100);
    auto target = uniformPicture(32, 16, 0);
    Slide(Slide::Direction::Right).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 124);
    EXPECT_EQ(sampleAt(target, 0, 8, 0), 0);
}

TEST(SlideTest, SlideUpAndDownMoveRows) {
    auto outgoing = uniformPicture(8, 16, 50);
    auto incoming = uniformPicture(8, 16, 200);
    setSample(outgoing, 0, 0, 4, 60);
    auto target = uniformPicture(8, 16, 0);
    Slide(Slide::Direction::Up).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 60);
    EXPECT_EQ(sampleAt(target, 0, 0, 12), 200);
    Slide(Slide::Direction::Down).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 0, 3), 200);
    EXPECT_EQ(sampleAt(target, 0, 0, 8), 60);
}

} // namespace
