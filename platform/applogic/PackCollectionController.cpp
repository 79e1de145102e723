#include "platform/applogic/PackCollectionController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/package/IPackageHelper.h"

namespace EditorCollection {

PackCollectionController::PackCollectionController(
    std::shared_ptr<Package::IPackageHelper> packageHelper)
    : helper(std::move(packageHelper)) {
    Velmor::Testing::Probe::hit(
        "EditorCollection::PackCollectionController::PackCollectionController");
    Velmor::Testing::CallLog::record(
        "EditorCollection::PackCollectionController::PackCollectionController");
}

PackCollectionController::~PackCollectionController() {
    Velmor::Testing::CallLog::record(
        "EditorCollection::PackCollectionController::~PackCollectionController");
}

QStringList PackCollectionController::packs() const {
    if (!helper)
        return {};
    return helper->installedPackages();
}

const std::shared_ptr<Package::IPackageHelper>& PackCollectionController::packageHelper() const {
    return helper;
}

} // namespace EditorCollection
