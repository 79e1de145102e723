#pragma once

#include "platform/editorlogic/AsyncLoadPolicy.h"

namespace EditorCollection {

// Keeps the collection items that persist between sessions.
class PersistentItemController {
public:
    // Records "EditorCollection::PersistentItemController::PersistentItemController(<policy>)"
    // with the policy's number.
    explicit PersistentItemController(AsyncLoadPolicy policy);
    PersistentItemController(const PersistentItemController&) = delete;
    PersistentItemController& operator=(const PersistentItemController&) = delete;
    ~PersistentItemController();

    AsyncLoadPolicy policy() const;

private:
    AsyncLoadPolicy loadPolicy;
};

} // namespace EditorCollection
