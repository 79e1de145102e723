#pragma once

#include <map>
#include <string>
#include <vector>

namespace Velmor::Core {

// Options for the engine's modules: module name, then option name, then the option's values.
using ModuleOptionTable = std::map<std::string, std::map<std::string, std::vector<std::string>>>;

namespace Utils {

// Sets one option of one module, replacing the values it had.
void SetModuleOption(ModuleOptionTable& table, const std::string& module, const std::string& option,
                     const std::vector<std::string>& values);

} // namespace Utils
} // namespace Velmor::Core
