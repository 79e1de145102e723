#include "platform/effects/FadeThrough.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Effects::Colour;
using Effects::FadeThrough;

namespace {

TEST(FadeThroughTest, BlackFillsTheMiddle) {
    const auto outgoing = uniformPicture(8, 8, 50, 90, 90);
    const auto incoming = uniformPicture(8, 8, 200);
    auto target = uniformPicture(8, 8, 0);
    const FadeThrough black(Colour{0, 0, 0});
    black.draw(outgoing, incoming, 0.5, target);
    EXPECT_EQ(sampleAt(target, 0, 4, 4), 16);
    EXPECT_EQ(sampleAt(target, 1, 1, 1), 128);
    black.draw(outgoing, incoming, 0.25, target);
    EXPECT_EQ(sampleAt(target, 0, 4, 4), 33);
    black.draw(outgoing, incoming, 0.75, target);
    EXPECT_EQ(sampleAt(target, 0, 4, 4), 108);
}

TEST(FadeThroughTest, WhiteFillsTheMiddle) {
    const auto outgoing = uniformPicture(8, 8, 50);
    const auto incoming = uniformPicture(8, 8, 200);
    auto target = uniformPicture(8, 8, 0);
    FadeThrough(Colour{255, 255, 255}).draw(outgoing, incoming, 0.5, target);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 235);
}

} // namespace
