#include "platform/effects/Dissolve.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Effects::Dissolve;

namespace {

TEST(DissolveTest, TheIncomingShareGrowsWithTheProgress) {
    const auto outgoing = uniformPicture(64, 64, 50);
    const auto incoming = uniformPicture(64, 64, 200);
    auto target = uniformPicture(64, 64, 0);
    for (const double progress : {0.1, 0.5, 0.9}) {
        Dissolve().draw(outgoing, incoming, progress, target);
        int incomingPixels = 0;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x)
                incomingPixels += sampleAt(target, 0, x, y) == 200;
        EXPECT_NEAR(incomingPixels / 4096.0, progress, 0.06) << progress;
    }
}

TEST(DissolveTest, ABlockTurnsWholeWithItsColour) {
    const auto outgoing = uniformPicture(16, 16, 50, 100, 100);
    const auto incoming = uniformPicture(16, 16, 200, 150, 150);
    auto target = uniformPicture(16, 16, 0);
    Dissolve().draw(outgoing, incoming, 0.5, target);
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool turned = sampleAt(target, 1, x, y) == 150;
            const std::uint8_t luma = turned ? 200 : 50;
            EXPECT_EQ(sampleAt(target, 0, 2 * x, 2 * y), luma);
            EXPECT_EQ(sampleAt(target, 0, 2 * x + 1, 2 * y + 1), luma);
            EXPECT_EQ(sampleAt(target, 2, x, y), turned ? 150 : 100);
        }
    }
}

TEST(DissolveTest, TheSameProgressGivesTheSamePicture) {
    const auto outgoing = uniformPicture(32, 32, 50);
    const auto incoming = uniformPicture(32, 32, 200);
    auto first = uniformPicture(32, 32, 0);
    auto second = uniformPicture(32, 32, 0);
    Dissolve().draw(outgoing, incoming, 0.37, first);
    Dissolve().draw(outgoing, incoming, 0.9, second);
    Dissolve().draw(outgoing, incoming, 0.37, second);
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x)
            ASSERT_EQ(sampleAt(first, 0, x, y), sampleAt(second, 0, x, y));
}

} // namespace
