#include "media/ExportRegistry.h"

#include "service/contexts/GlobalContextProvider.h"

#include <gtest/gtest.h>
#include <memory>

using EditorService::ExportRegistry;
using EditorService::GlobalContextProvider;

TEST(ExportRegistryTest, EachRuntimeHasARegistryOfItsOwnMadeOnFirstUse) {
    GlobalContextProvider first({"app"});
    EXPECT_EQ(ExportRegistry::find(&first), nullptr);
    const auto registry = ExportRegistry::of(first);
    EXPECT_EQ(ExportRegistry::of(first), registry);
    EXPECT_EQ(ExportRegistry::find(&first), registry);
    GlobalContextProvider second({"app"});
    EXPECT_EQ(ExportRegistry::find(&second), nullptr);
    EXPECT_NE(ExportRegistry::of(second), registry);
}

TEST(ExportRegistryTest, ARuntimesRegistryGoesWithIt) {
    auto provider = std::make_unique<GlobalContextProvider>(QStringList{"app"});
    const GlobalContextProvider* gone = provider.get();
    std::weak_ptr<ExportRegistry> registry = ExportRegistry::of(*provider);
    provider.reset();
    EXPECT_TRUE(registry.expired());
    EXPECT_EQ(ExportRegistry::find(gone), nullptr);
}

TEST(ExportRegistryTest, AWaitingPlaceCountsThePlacesStillWaitingBeforeIt) {
    ExportRegistry registry;
    const auto first = registry.enterQueue();
    const auto second = registry.enterQueue();
    const auto third = registry.enterQueue();
    EXPECT_EQ(registry.ahead(first), 0);
    EXPECT_EQ(registry.ahead(second), 1);
    EXPECT_EQ(registry.ahead(third), 2);
    registry.leaveQueue(second);
    EXPECT_EQ(registry.ahead(third), 1);
    registry.leaveQueue(first);
    EXPECT_EQ(registry.ahead(third), 0);
}

TEST(ExportRegistryTest, LeavingTwiceOrWithAPlaceNeverTakenChangesNothing) {
    ExportRegistry registry;
    const auto first = registry.enterQueue();
    const auto second = registry.enterQueue();
    registry.leaveQueue(first);
    registry.leaveQueue(first);
    registry.leaveQueue(second + 10);
    EXPECT_EQ(registry.ahead(second), 0);
    const auto third = registry.enterQueue();
    EXPECT_EQ(registry.ahead(third), 1);
}
