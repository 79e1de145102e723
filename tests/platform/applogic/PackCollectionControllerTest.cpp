#include "platform/applogic/PackCollectionController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/package/IPackageHelper.h"

#include <gtest/gtest.h>
#include <stdexcept>

using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

class FixedHelper : public Package::IPackageHelper {
public:
    QStringList installedPackages() const override { return {"Summer", "Winter"}; }
};

} // namespace

TEST(PackCollectionControllerTest, ListsThePacksItsHelperFinds) {
    const EditorCollection::PackCollectionController controller(std::make_shared<FixedHelper>());
    EXPECT_EQ(controller.packs(), (QStringList{"Summer", "Winter"}));
}

TEST(PackCollectionControllerTest, WithNoHelperThereAreNoPacks) {
    const EditorCollection::PackCollectionController controller(nullptr);
    EXPECT_TRUE(controller.packs().isEmpty());
}

TEST(PackCollectionControllerTest, SharesTheHelperUntilItIsDestroyed) {
    std::weak_ptr<Package::IPackageHelper> watched;
    {
        auto helper = std::make_shared<FixedHelper>();
        watched = helper;
        const EditorCollection::PackCollectionController controller(std::move(helper));
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(PackCollectionControllerTest, ConstructionAndDestructionAreRecorded) {
    Probe::clear();
    CallLog::clear();
    { const EditorCollection::PackCollectionController controller(nullptr); }
    const std::vector<std::string> expected{
        "EditorCollection::PackCollectionController::PackCollectionController",
        "EditorCollection::PackCollectionController::~PackCollectionController"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST(PackCollectionControllerTest, AnInjectedFailureLeavesTheConstructor) {
    CallLog::clear();
    Probe::failNext("EditorCollection::PackCollectionController::PackCollectionController");
    EXPECT_THROW(EditorCollection::PackCollectionController(nullptr), std::runtime_error);
    EXPECT_TRUE(CallLog::entries().empty());
}
