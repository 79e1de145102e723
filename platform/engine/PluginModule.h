#pragma once

#include "platform/engine/PluginRegistry.h"

#include <string>
#include <vector>

namespace Velmor::Core {

// The plug-ins built as modules of their own, so that a process links no media library and maps
// one only when the engine loads such a plug-in. A module is a shared library named after its
// plug-in ("DecodersFF.so"); once opened it stays open to the end of the process, because the
// media libraries it brings in keep process-wide state that outlives any one start.
class PluginModule {
public:
    static bool IsModule(const std::string& pluginName);
    // Where modules are looked for, in order: the installed directory as seen from the running
    // program's, the build tree's, then the installed one as configured.
    static const std::vector<std::string>& SearchPath();

    // Opens the plug-in's module from the first directory of the search path that holds it and
    // calls its entry. Throws PluginError "Can not load the plug-in <name>: <reason>" when no
    // directory holds it, the module does not open or has no entry; passes what the entry throws.
    static void Load(LoadedPlugin& plugin);
    static void Load(LoadedPlugin& plugin, const std::vector<std::string>& searchPath);
};

} // namespace Velmor::Core
