#include "platform/editorlogic/ResourceController.h"

#include "platform/editorlogic/IRedirectionTableHolder.h"
#include "platform/editorlogic/RedirectionTable.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Resource {

Controller::Controller(std::unique_ptr<IRedirectionTableHolder> redirections)
    : holder(std::move(redirections)) {
    Velmor::Testing::Probe::hit("Resource::Controller::Controller");
    Velmor::Testing::CallLog::record("Resource::Controller::Controller");
}

Controller::~Controller() {
    Velmor::Testing::CallLog::record("Resource::Controller::~Controller");
}

QString Controller::locate(const QString& path) const {
    return holder->table().resolve(path);
}

IRedirectionTableHolder& Controller::redirections() const {
    return *holder;
}

} // namespace Resource
