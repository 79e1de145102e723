#include "platform/engine/CoreManagerOptions.h"

namespace Velmor::Core::CoreManagerOptions {

const std::string MODULE_PLUGIN_LOADER = "PluginLoader";
const std::string OPT_DISABLED_PLUGINS = "DisabledPlugins";

} // namespace Velmor::Core::CoreManagerOptions
