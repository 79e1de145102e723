#include "platform/engine/Utils.h"

#include "platform/foundation/CallLog.h"

namespace Velmor::Core::Utils {

void SetModuleOption(ModuleOptionTable& table, const std::string& module, const std::string& option,
                     const std::vector<std::string>& values) {
    Testing::CallLog::record("Utils::SetModuleOption");
    table[module][option] = values;
}

} // namespace Velmor::Core::Utils
