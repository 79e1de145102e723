#include "platform/editorlogic/RedirectionTableHolder.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Resource {

RedirectionTableHolder::RedirectionTableHolder() {
    Velmor::Testing::Probe::hit("Resource::RedirectionTableHolder::RedirectionTableHolder");
    Velmor::Testing::CallLog::record("Resource::RedirectionTableHolder::RedirectionTableHolder");
}

RedirectionTableHolder::~RedirectionTableHolder() {
    Velmor::Testing::CallLog::record("Resource::RedirectionTableHolder::~RedirectionTableHolder");
}

RedirectionTable& RedirectionTableHolder::table() {
    return redirections;
}

const RedirectionTable& RedirectionTableHolder::table() const {
    return redirections;
}

void RedirectionTableHolder::flush() const {
    Velmor::Testing::CallLog::record("Resource::RedirectionTableHolder::flush");
}

} // namespace Resource
