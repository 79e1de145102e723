#include "platform/content/AnimationContentProvider.h"
#include "platform/content/EffectContentProvider.h"
#include "platform/content/ImportContentProvider.h"
#include "platform/content/OverlayContentProvider.h"
#include "platform/content/PanAndZoomContentProvider.h"
#include "platform/content/ThemeContentProvider.h"
#include "platform/content/TransitionContentProvider.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/package/PackageDirectory.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

// The seven content providers share one shape: a recorded life and a list of items.
template <class T> struct ProviderNamespace;

#define PROVIDER_NAMESPACE(Namespace)                                                              \
    template <> struct ProviderNamespace<Namespace::ContentProvider> {                             \
        static std::string name() { return #Namespace; }                                           \
    }

PROVIDER_NAMESPACE(Import);
PROVIDER_NAMESPACE(Overlay);
PROVIDER_NAMESPACE(Effect);
PROVIDER_NAMESPACE(Transition);
PROVIDER_NAMESPACE(Animation);
PROVIDER_NAMESPACE(PanAndZoom);
PROVIDER_NAMESPACE(Theme);

template <class T> class ContentProvidersTest : public testing::Test {
protected:
    // The themes offered are the packages the host ships.
    void SetUp() override {
        Probe::clear();
        CallLog::clear();
        Package::setPackageDirectory(SHIPPED_PACKAGES_DIR);
    }
    void TearDown() override { Package::setPackageDirectory(QString()); }

    static std::string entry(const std::string& operation) {
        return ProviderNamespace<T>::name() + "::ContentProvider::" + operation;
    }
};

struct ProviderName {
    template <class T> static std::string GetName(int) { return ProviderNamespace<T>::name(); }
};

using Providers =
    testing::Types<Import::ContentProvider, Overlay::ContentProvider, Effect::ContentProvider,
                   Transition::ContentProvider, Animation::ContentProvider,
                   PanAndZoom::ContentProvider, Theme::ContentProvider>;
TYPED_TEST_SUITE(ContentProvidersTest, Providers, ProviderName);

TYPED_TEST(ContentProvidersTest, ConstructionAndDestructionAreRecorded) {
    { TypeParam provider; }
    const std::vector<std::string> expected{TestFixture::entry("ContentProvider"),
                                            TestFixture::entry("~ContentProvider")};
    EXPECT_EQ(CallLog::entries(), expected);
}

TYPED_TEST(ContentProvidersTest, OffersDistinctItems) {
    const TypeParam provider;
    QStringList items = provider.items();
    EXPECT_FALSE(items.isEmpty());
    EXPECT_EQ(items.removeDuplicates(), 0);
}

TYPED_TEST(ContentProvidersTest, AnInjectedFailureLeavesTheConstructorUnrecorded) {
    Probe::failNext(TestFixture::entry("ContentProvider"));
    EXPECT_THAT([&] { TypeParam provider; },
                FailedWith<std::runtime_error>("Injected failure at "
                                               + TestFixture::entry("ContentProvider")));
    EXPECT_TRUE(CallLog::entries().empty());
}
