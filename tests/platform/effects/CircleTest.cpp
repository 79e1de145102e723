#include "platform/effects/Circle.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Effects::Circle;

namespace {

class CircleTest : public testing::Test {
protected:
    Velmor::AV::Frame outgoing = uniformPicture(40, 40, 50);
    Velmor::AV::Frame incoming = uniformPicture(40, 40, 200);
    Velmor::AV::Frame target = uniformPicture(40, 40, 0);
};

TEST_F(CircleTest, OpeningShowsTheIncomingPictureInTheMiddle) {
    // Half of the reach, sqrt(800) / 2: about 14 pixels.
    Circle(Circle::Motion::Open).draw(outgoing, incoming, 0.5, target);
    EXPECT_EQ(sampleAt(target, 0, 20, 20), 200);
    EXPECT_EQ(sampleAt(target, 0, 30, 20), 200);
    EXPECT_EQ(sampleAt(target, 0, 36, 20), 50);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 50);
    const int rim = sampleAt(target, 0, 34, 20);
    EXPECT_GT(rim, 50);
    EXPECT_LT(rim, 200);
}

TEST_F(CircleTest, ClosingKeepsTheOutgoingPictureInTheMiddle) {
    Circle(Circle::Motion::Close).draw(outgoing, incoming, 0.5, target);
    EXPECT_EQ(sampleAt(target, 0, 20, 20), 50);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 200);
}

} // namespace
