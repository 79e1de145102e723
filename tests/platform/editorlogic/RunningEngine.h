#pragma once

#include "platform/engine/CoreManager.h"
#include "platform/engine/CoreManagerOptions.h"
#include "platform/engine/Utils.h"

#include <string>
#include <vector>

namespace EditorService::Testing {

// The engine up for the length of a test, with the plug-ins named disabled: the media layer
// asks it which codec sets it may use.
class RunningEngine {
public:
    explicit RunningEngine(const std::vector<std::string>& disabled = {}) {
        Velmor::Core::ModuleOptionTable table;
        Velmor::Core::Utils::SetModuleOption(
            table, Velmor::Core::CoreManagerOptions::MODULE_PLUGIN_LOADER,
            Velmor::Core::CoreManagerOptions::OPT_DISABLED_PLUGINS, disabled);
        Velmor::Core::CoreManager::Instance().Initialize({}, table, {});
        Velmor::Core::CoreManager::Instance().WaitUntilInitialized();
    }
    RunningEngine(const RunningEngine&) = delete;
    RunningEngine& operator=(const RunningEngine&) = delete;
    ~RunningEngine() { Velmor::Core::CoreManager::Instance().Uninitialize(); }
};

} // namespace EditorService::Testing
