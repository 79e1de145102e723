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
    return m_initialized.load();
}

void OglManager::Initialize() {
    Testing::CallLog::record("OglManager::Initialize");
    Testing::Probe::hit("OglManager::Initialize");
    m_initialized.store(true);
}

void OglManager::Deinitialize() {
    Testing::CallLog::record("OglManager::Deinitialize");
    m_initialized.store(false);
}

} // namespace Velmor::Ogl
