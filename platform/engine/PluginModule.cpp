#include "platform/engine/PluginModule.h"

#include "platform/av/MediaError.h"
#include "platform/av/MediaLibraries.h"
#include "platform/engine/PluginError.h"

#include <algorithm>
#include <climits>
#include <unistd.h>

namespace Velmor::Core {

namespace {

PluginError loadFailure(const std::string& pluginName, const std::string& reason) {
    return PluginError("Can not load the plug-in " + pluginName + ": " + reason);
}

std::string joined(const std::vector<std::string>& directories) {
    std::string text;
    for (const auto& directory : directories)
        text += (text.empty() ? "" : ", ") + directory;
    return text;
}

std::string findModule(const std::string& pluginName, const std::vector<std::string>& searchPath) {
    const std::string fileName = pluginName + ".so";
    for (const auto& directory : searchPath) {
        const std::string path = directory + "/" + fileName;
        if (::access(path.c_str(), R_OK) == 0)
            return path;
    }
    throw loadFailure(pluginName, fileName + " is in none of " + joined(searchPath));
}

// Where an installed program's modules are, wherever the installation was moved to; in the build
// tree it is the same directory as the build tree's for the console host.
std::string besideTheProgram() {
    char program[PATH_MAX];
    const ssize_t length = ::readlink("/proc/self/exe", program, sizeof program - 1);
    if (length <= 0)
        return VELMOR_PLUGIN_INSTALL_DIR;
    std::string directory(program, std::size_t(length));
    directory.erase(directory.rfind('/'));
    return directory + "/" + VELMOR_PLUGIN_DIR_FROM_PROGRAM;
}

} // namespace

bool PluginModule::IsModule(const std::string& pluginName) {
    static const std::vector<std::string> modules{"EffectsFF", "DecodersFF", "EncodersFF"};
    return std::find(modules.begin(), modules.end(), pluginName) != modules.end();
}

const std::vector<std::string>& PluginModule::SearchPath() {
    static const std::vector<std::string> directories{besideTheProgram(), VELMOR_PLUGIN_BUILD_DIR,
                                                      VELMOR_PLUGIN_INSTALL_DIR};
    return directories;
}

void PluginModule::Load(const std::string& pluginName) {
    Load(pluginName, SearchPath());
}

void PluginModule::Load(const std::string& pluginName, const std::vector<std::string>& searchPath) {
    const std::string path = findModule(pluginName, searchPath);
    try {
        AV::MediaLibraries::open(path);
    } catch (const AV::MediaError& error) {
        throw loadFailure(pluginName, error.what());
    }
}

} // namespace Velmor::Core
