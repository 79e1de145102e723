#include "platform/effects/TransitionCatalog.h"
#include "tests/platform/effects/Pictures.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using namespace EditorService::Testing;
using namespace Effects;

namespace {

TEST(TransitionCatalogTest, OffersTheFourteenTransitionsInOrder) {
    std::vector<std::string> names;
    for (const auto& kind : transitionKinds()) {
        names.push_back(kind.name);
        EXPECT_FALSE(kind.description.empty()) << kind.name;
    }
    EXPECT_EQ(names, (std::vector<std::string>{"fade", "fade-black", "fade-white", "dissolve",
                                               "wipe-left", "wipe-right", "wipe-up", "wipe-down",
                                               "slide-left", "slide-right", "slide-up",
                                               "slide-down", "circle-open", "circle-close"}));
    EXPECT_EQ(transitionNameList().substr(0, 24), "fade, fade-black, fade-w");
}

// Every transition offered is drawn: all outgoing at 0, all incoming at 1.
TEST(TransitionCatalogTest, EveryTransitionRunsFromTheOutgoingToTheIncomingPicture) {
    const auto outgoing = uniformPicture(16, 8, 50, 90, 100);
    const auto incoming = uniformPicture(16, 8, 200, 160, 170);
    auto target = uniformPicture(16, 8, 0);
    for (const auto& kind : transitionKinds()) {
        const auto transition = makeTransition(kind.name);
        EXPECT_TRUE(isTransition(kind.name));
        transition->draw(outgoing, incoming, 0, target);
        EXPECT_EQ(sampleAt(target, 0, 3, 2), 50) << kind.name;
        EXPECT_EQ(sampleAt(target, 1, 7, 3), 90) << kind.name;
        transition->draw(outgoing, incoming, 1, target);
        EXPECT_EQ(sampleAt(target, 0, 3, 2), 200) << kind.name;
        EXPECT_EQ(sampleAt(target, 2, 0, 0), 170) << kind.name;
    }
}

TEST(TransitionCatalogTest, AnUnknownNameIsRefused) {
    EXPECT_FALSE(isTransition("zoom-blur"));
    EXPECT_THAT([] { makeTransition("zoom-blur"); },
                FailedWith<std::invalid_argument>("Unknown transition \"zoom-blur\""));
}

TEST(TransitionCatalogTest, PicturesOfDifferentSizesAreRefused) {
    const auto outgoing = uniformPicture(16, 8, 50);
    const auto incoming = uniformPicture(8, 8, 200);
    auto target = uniformPicture(16, 8, 0);
    EXPECT_THAT([&] { makeTransition("fade")->draw(outgoing, incoming, 0.5, target); },
                FailedWith<std::invalid_argument>(
                    "A fade needs yuv420p pictures of one size, not 16x8 yuv420p, 8x8 yuv420p, "
                    "16x8 yuv420p"));
}

} // namespace
