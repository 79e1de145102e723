#pragma once

#include <string>
#include <vector>

namespace Velmor::Core {

// The plug-ins on the media libraries, each a module of its own, so that a process links no media
// library and maps them only when the engine loads such a plug-in. A module is a shared library
// named after its plug-in ("DecodersFF.so") that hands the media stages the libraries' functions
// (Velmor::AV::MediaLibraries); once opened it stays open to the end of the process, because the
// libraries keep process-wide state that outlives any one start.
class PluginModule {
public:
    static bool IsModule(const std::string& pluginName);
    // Where modules are looked for, in order: the installed directory as seen from the running
    // program's, the build tree's, then the installed one as configured.
    static const std::vector<std::string>& SearchPath();

    // Opens the plug-in's module from the first directory of the search path that holds it.
    // Throws PluginError "Can not load the plug-in <name>: <reason>" when no directory holds it,
    // or the module does not open or lacks a function of the media libraries.
    static void Load(const std::string& pluginName);
    static void Load(const std::string& pluginName, const std::vector<std::string>& searchPath);
};

} // namespace Velmor::Core
