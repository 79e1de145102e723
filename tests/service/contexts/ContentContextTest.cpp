#include "service/contexts/ContentContext.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/model/CollectionID.h"
#include "tests/service/contexts/RuntimeFixture.h"
#include "tests/support/FailedWith.h"

#include <atomic>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>
#include <type_traits>

using EditorService::AbstractContext;
using EditorService::ContentContext;
using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

const std::vector<std::string> fieldsBuilt{
    "Resource::RedirectionTableHolder::RedirectionTableHolder",
    "Resource::Controller::Controller",
    "EditorCollection::Controller::Controller(Packs)",
    "Package::createPackageHelper",
    "Package::PackageHelper::PackageHelper",
    "EditorCollection::PackCollectionController::PackCollectionController",
    "Package::ContentProvider::ContentProvider",
    "Package::ContentProvider::startLoading",
    "EditorCollection::PersistentItemController::PersistentItemController(0)",
    "Import::ContentProvider::ContentProvider",
    "Overlay::ContentProvider::ContentProvider",
    "Effect::ContentProvider::ContentProvider",
    "Transition::ContentProvider::ContentProvider",
    "Animation::ContentProvider::ContentProvider",
    "PanAndZoom::ContentProvider::ContentProvider",
    "Theme::ContentProvider::ContentProvider",
    "Package::ContentProvider::waitForFinishLoading"};

const std::vector<std::string> fieldsDestroyed{
    "Theme::ContentProvider::~ContentProvider",
    "PanAndZoom::ContentProvider::~ContentProvider",
    "Animation::ContentProvider::~ContentProvider",
    "Transition::ContentProvider::~ContentProvider",
    "Effect::ContentProvider::~ContentProvider",
    "Overlay::ContentProvider::~ContentProvider",
    "Import::ContentProvider::~ContentProvider",
    "EditorCollection::PersistentItemController::~PersistentItemController",
    "Package::ContentProvider::~ContentProvider",
    "EditorCollection::PackCollectionController::~PackCollectionController",
    "Package::PackageHelper::~PackageHelper",
    "EditorCollection::Controller::~Controller",
    "Resource::Controller::~Controller",
    "Resource::RedirectionTableHolder::~RedirectionTableHolder"};

// The call log without the loader thread's own entry, whose place among the fields depends on
// how fast the packages load.
std::vector<std::string> withoutLoaderEntries(std::vector<std::string> entries) {
    entries.erase(
        std::remove_if(entries.begin(), entries.end(),
                       [](const std::string& entry) {
                           return entry.rfind("Package::ContentProvider::loadingFinished", 0) == 0;
                       }),
        entries.end());
    return entries;
}

std::ptrdiff_t positionOf(const std::vector<std::string>& entries, const std::string& entry) {
    return std::find(entries.begin(), entries.end(), entry) - entries.begin();
}

} // namespace

class ContentContextTest : public EditorService::Testing::RuntimeFixture {};

TEST_F(ContentContextTest, IsAContextWithoutAMetaObjectOfItsOwn) {
    EXPECT_TRUE((std::is_base_of_v<AbstractContext, ContentContext>));
    const ContentContext context;
    EXPECT_EQ(context.metaObject(), &AbstractContext::staticMetaObject);
}

TEST_F(ContentContextTest, BuildsItsTwelveFieldsInOrderThenWaitsForThePackages) {
    const ContentContext context;
    EXPECT_EQ(withoutLoaderEntries(CallLog::entries()), fieldsBuilt);
}

TEST_F(ContentContextTest, StartsLoadingOnceRightAfterThePackageProviderIsBuilt) {
    const ContentContext context;
    const auto entries = CallLog::entries();
    EXPECT_EQ(count("Package::ContentProvider::startLoading"), 1);
    EXPECT_EQ(positionOf(entries, "Package::ContentProvider::startLoading"),
              positionOf(entries, "Package::ContentProvider::ContentProvider") + 1);
    EXPECT_LT(
        positionOf(entries, "Package::ContentProvider::startLoading"),
        positionOf(entries,
                   "EditorCollection::PersistentItemController::PersistentItemController(0)"));
}

TEST_F(ContentContextTest, TheLaterFieldsAreBuiltWhileThePackagesLoad) {
    std::promise<void> release;
    auto released = release.get_future().share();
    Probe::onNext("Package::ContentProvider::load", [released] { released.wait(); });
    Probe::onNext("Theme::ContentProvider::ContentProvider", [&release] { release.set_value(); });
    const ContentContext context;
    const auto entries = CallLog::entries();
    // The loader was held until the last field began, so it finished after the one before.
    EXPECT_GT(positionOf(entries, "Package::ContentProvider::loadingFinished(0)"),
              positionOf(entries, "PanAndZoom::ContentProvider::ContentProvider"));
    EXPECT_EQ(entries.back(), "Package::ContentProvider::waitForFinishLoading");
}

TEST_F(ContentContextTest, TheCollectionControllerKnowsExactlyThePacksCollection) {
    EXPECT_EQ(EditorCollection::CollectionID::PACKS, "Packs");
    const ContentContext context;
    EXPECT_EQ(startingWith("EditorCollection::Controller::Controller("),
              std::vector<std::string>{"EditorCollection::Controller::Controller("
                                       + EditorCollection::CollectionID::PACKS.toStdString()
                                       + ")"});
}

TEST_F(ContentContextTest, TheConstructorReturnsOnlyAfterThePackagesHaveLoaded) {
    addPackage("Summer");
    std::promise<void> release;
    auto released = release.get_future().share();
    std::promise<void> loading;
    Probe::onNext("Package::ContentProvider::load", [&loading, released] {
        loading.set_value();
        released.wait();
    });
    std::atomic<bool> constructed{false};
    std::thread builder([&constructed] {
        const ContentContext context;
        constructed = true;
    });
    ASSERT_EQ(loading.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(constructed.load());
    release.set_value();
    builder.join();
    EXPECT_TRUE(constructed.load());
}

TEST_F(ContentContextTest, TeardownDestroysTheFieldsInReverse) {
    std::optional<ContentContext> context(std::in_place);
    CallLog::clear();
    context.reset();
    EXPECT_EQ(CallLog::entries(), fieldsDestroyed);
}

struct PackageCount {
    const char* name;
    int packages;
};

class ContentContextPackagesTest : public ContentContextTest,
                                   public testing::WithParamInterface<PackageCount> {};

TEST_P(ContentContextPackagesTest, WaitsForTheLoadingOfAnyNumberOfPackages) {
    for (int index = 0; index < GetParam().packages; ++index)
        addPackage(QStringLiteral("Pack%1").arg(index));
    const ContentContext context;
    const auto entries = CallLog::entries();
    const std::string finished =
        "Package::ContentProvider::loadingFinished(" + std::to_string(GetParam().packages) + ")";
    EXPECT_EQ(count(finished), 1);
    EXPECT_LT(positionOf(entries, finished),
              positionOf(entries, "Package::ContentProvider::waitForFinishLoading"));
    EXPECT_EQ(entries.back(), "Package::ContentProvider::waitForFinishLoading");
}

INSTANTIATE_TEST_SUITE_P(Counts, ContentContextPackagesTest,
                         testing::Values(PackageCount{"None", 0}, PackageCount{"One", 1},
                                         PackageCount{"Five", 5}),
                         [](const testing::TestParamInfo<PackageCount>& info) {
                             return info.param.name;
                         });

TEST_F(ContentContextTest, AFieldConstructorThatThrowsUnwindsTheFieldsBuiltSoFar) {
    Probe::failNext("Effect::ContentProvider::ContentProvider");
    EXPECT_THAT([&] { const ContentContext context; },
                FailedWith<std::runtime_error>(
                    "Injected failure at Effect::ContentProvider::ContentProvider"));
    const std::vector<std::string> expected{
        "Overlay::ContentProvider::~ContentProvider",
        "Import::ContentProvider::~ContentProvider",
        "EditorCollection::PersistentItemController::~PersistentItemController",
        "Package::ContentProvider::~ContentProvider",
        "EditorCollection::PackCollectionController::~PackCollectionController",
        "Package::PackageHelper::~PackageHelper",
        "EditorCollection::Controller::~Controller",
        "Resource::Controller::~Controller",
        "Resource::RedirectionTableHolder::~RedirectionTableHolder"};
    const auto entries = withoutLoaderEntries(CallLog::entries());
    ASSERT_GE(entries.size(), expected.size());
    EXPECT_EQ(std::vector<std::string>(entries.end() - expected.size(), entries.end()), expected);
    EXPECT_EQ(count("Package::ContentProvider::waitForFinishLoading"), 0);
}

TEST_F(ContentContextTest, AFailureOfTheWaitDestroysTheWholePrivatePart) {
    Probe::failNext("Package::ContentProvider::waitForFinishLoading");
    EXPECT_THAT([&] { const ContentContext context; },
                FailedWith<std::runtime_error>(
                    "Injected failure at Package::ContentProvider::waitForFinishLoading"));
    const auto entries = withoutLoaderEntries(CallLog::entries());
    ASSERT_GE(entries.size(), fieldsDestroyed.size());
    EXPECT_EQ(std::vector<std::string>(entries.end() - fieldsDestroyed.size(), entries.end()),
              fieldsDestroyed);
}
