#pragma once

#include <string>

// Module and option names the core manager understands in its module option table.
namespace Velmor::Core::CoreManagerOptions {

// The plug-in loader module.
extern const std::string MODULE_PLUGIN_LOADER;
// Option of the plug-in loader: names of plug-ins not to load.
extern const std::string OPT_DISABLED_PLUGINS;

} // namespace Velmor::Core::CoreManagerOptions
