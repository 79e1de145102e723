#include "platform/editorlogic/PersistentItemController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <string>

namespace EditorCollection {

PersistentItemController::PersistentItemController(AsyncLoadPolicy policy)
    : loadPolicy(policy) {
    Velmor::Testing::Probe::hit(
        "EditorCollection::PersistentItemController::PersistentItemController");
    Velmor::Testing::CallLog::record(
        "EditorCollection::PersistentItemController::PersistentItemController("
        + std::to_string(static_cast<int>(policy)) + ")");
}

PersistentItemController::~PersistentItemController() {
    Velmor::Testing::CallLog::record(
        "EditorCollection::PersistentItemController::~PersistentItemController");
}

AsyncLoadPolicy PersistentItemController::policy() const {
    return loadPolicy;
}

} // namespace EditorCollection
