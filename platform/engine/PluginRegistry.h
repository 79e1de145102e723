#pragma once

#include <string>
#include <vector>

namespace Velmor::Core {

// The plug-ins the engine ships with, in the order the loader loads them.
class PluginRegistry {
public:
    static const std::vector<std::string>& KnownPlugins();
    static bool IsKnown(const std::string& pluginName);
};

} // namespace Velmor::Core
