#include "platform/content/OverlayContentProvider.h"
#include "platform/content/PanAndZoomContentProvider.h"
#include "platform/content/TransitionContentProvider.h"
#include "platform/effects/Easing.h"
#include "platform/effects/Title.h"
#include "platform/effects/TransitionCatalog.h"

#include <gtest/gtest.h>

namespace {

// What the providers offer is what the renderer draws: every name they give is one the
// drawing library makes, and none it makes is left out.
TEST(OfferedContentTest, TheTransitionsOfferedAreTheOnesDrawn) {
    const Transition::ContentProvider provider;
    QStringList drawn;
    for (const auto& kind : Effects::transitionKinds()) {
        drawn.append(QString::fromStdString(kind.name));
        EXPECT_NO_THROW(Effects::makeTransition(kind.name));
    }
    EXPECT_EQ(provider.items(), drawn);
    EXPECT_EQ(provider.items().size(), 14);
    EXPECT_EQ(provider.transitions().front().description,
              "The outgoing clip fades into the incoming one");
}

TEST(OfferedContentTest, ThePanAndZoomEasingsAreTheOnesDrawn) {
    const PanAndZoom::ContentProvider provider;
    EXPECT_EQ(provider.items(), (QStringList{"linear", "ease-in", "ease-out", "ease-in-out"}));
    for (const auto& easing : provider.easings()) {
        EXPECT_TRUE(Effects::easingNamed(easing.name)) << easing.name;
        EXPECT_FALSE(easing.description.empty());
    }
}

TEST(OfferedContentTest, TheOverlaysAreTextImagesAndVideosWithNinePositions) {
    const Overlay::ContentProvider provider;
    EXPECT_EQ(provider.items(), (QStringList{"text", "image", "video"}));
    EXPECT_EQ(provider.positions(), Effects::positionNames());
    EXPECT_EQ(provider.positions().size(), 9u);
}

} // namespace
