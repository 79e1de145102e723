#include "platform/effects/Wipe.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Effects::Wipe;

namespace {

class WipeTest : public testing::Test {
protected:
    Velmor::AV::Frame outgoing = uniformPicture(32, 16, 50);
    Velmor::AV::Frame incoming = uniformPicture(32, 16, 200);
    Velmor::AV::Frame target = uniformPicture(32, 16, 0);
};

TEST_F(WipeTest, WipeLeftUncoversTheIncomingPictureFromTheRight) {
    Wipe(Wipe::Direction::Left).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 23, 5), 50);
    EXPECT_EQ(sampleAt(target, 0, 24, 5), 200);
    EXPECT_EQ(sampleAt(target, 0, 31, 15), 200);
}

TEST_F(WipeTest, TheEdgeFallsBetweenPixels) {
    // The edge at 32 * 0.7 = 22.4: pixel 22 is 0.6 incoming.
    Wipe(Wipe::Direction::Left).draw(outgoing, incoming, 0.3, target);
    EXPECT_EQ(sampleAt(target, 0, 21, 0), 50);
    EXPECT_EQ(sampleAt(target, 0, 22, 0), 140);
    EXPECT_EQ(sampleAt(target, 0, 23, 0), 200);
}

TEST_F(WipeTest, WipeRightUncoversFromTheLeft) {
    Wipe(Wipe::Direction::Right).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 7, 3), 200);
    EXPECT_EQ(sampleAt(target, 0, 8, 3), 50);
}

TEST_F(WipeTest, WipeUpUncoversFromTheBottomAndDownFromTheTop) {
    Wipe(Wipe::Direction::Up).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 0, 11), 50);
    EXPECT_EQ(sampleAt(target, 0, 0, 12), 200);
    Wipe(Wipe::Direction::Down).draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 0, 3), 200);
    EXPECT_EQ(sampleAt(target, 0, 0, 4), 50);
}

} // namespace
