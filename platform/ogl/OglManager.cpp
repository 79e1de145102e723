#include "platform/ogl/OglManager.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Velmor::Ogl {

OglManager& OglManager::GetInstance() {
    static OglManager instance;
    return instance;
}

bool OglManager::IsInitialized() const {
    Testing::CallLog::record("OglManager::IsInitialized");
    return initialized.load();
}

void OglManager::Initialize() {
    Testing::CallLog::record("OglManager::Initialize");
    Testing::Probe::hit("OglManager::Initialize");
    initialized.store(true);
}

void OglManager::Deinitialize() {
    Testing::CallLog::record("OglManager::Deinitialize");
    initialized.store(false);
}

} // namespace Velmor::Ogl
