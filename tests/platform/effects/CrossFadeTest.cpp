#include "platform/effects/CrossFade.h"
#include "tests/platform/effects/Pictures.h"
#include "tests/support/MediaFixtures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Effects::CrossFade;

namespace {

TEST(CrossFadeTest, EveryPixelMovesByTheProgress) {
    const auto outgoing = uniformPicture(8, 8, 50, 100, 100);
    const auto incoming = uniformPicture(8, 8, 200, 200, 60);
    auto target = uniformPicture(8, 8, 0);
    CrossFade().draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 5, 5), 88);
    EXPECT_EQ(sampleAt(target, 1, 2, 2), 125);
    EXPECT_EQ(sampleAt(target, 2, 1, 3), 90);
}

TEST(CrossFadeTest, HalfWayIsTheMeanOfTwoDecodedFrames) {
    const auto outgoing = decodedPicture(mediaFixture("h264_aac.mp4"), 0);
    const auto incoming = decodedPicture(mediaFixture("clip.mov"), 20);
    auto target = uniformPicture(outgoing.width(), outgoing.height(), 0);
    CrossFade().draw(outgoing, incoming, 0.5, target);
    for (int y = 0; y < target.height(); y += 7) {
        for (int x = 0; x < target.width(); x += 5) {
            const int mean = (sampleAt(outgoing, 0, x, y) + sampleAt(incoming, 0, x, y) + 1) / 2;
            ASSERT_NEAR(sampleAt(target, 0, x, y), mean, 1) << x << "," << y;
        }
    }
}

} // namespace
