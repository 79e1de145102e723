#pragma once

#include "platform/engine/ICoreTracker.h"
#include "platform/engine/Utils.h"

#include <boost/intrusive_ptr.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Velmor::Core {

// The engine of the process. Initialize starts the plug-in loader on a thread of its own and
// returns; WaitUntilInitialized blocks until the loader has finished. Initialize may be called
// again, also without Uninitialize between: the engine then starts over.
class CoreManager {
public:
    static CoreManager& Instance();

    CoreManager(const CoreManager&) = delete;
    CoreManager& operator=(const CoreManager&) = delete;

    // onInitialized, when set, is called on the loader's thread once every plug-in is loaded;
    // the tracker, when set, is told of each plug-in as it loads. Plug-ins named by the
    // plug-in loader's disabled-plug-ins option are skipped; unknown names are ignored. A
    // plug-in that fails to load ends the start; WaitUntilInitialized throws its failure.
    void Initialize(std::function<void()> onInitialized, const ModuleOptionTable& options,
                    boost::intrusive_ptr<Proc::ICoreTracker> tracker);
    // Throws std::logic_error when Initialize has not been called since the last Uninitialize.
    void WaitUntilInitialized();
    void Uninitialize();

    bool IsInitialized() const;
    // The plug-ins loaded by the last start, in load order.
    std::vector<std::string> LoadedPlugins() const;
    bool IsPluginLoaded(const std::string& pluginName) const;
    // Throws PluginError "Can not <action>: the plug-in <name> is disabled" when the running
    // engine did not load the plug-in, std::logic_error when no engine runs.
    void RequirePlugin(const std::string& pluginName, const std::string& action) const;
    // The media libraries' encoder for a codec as presets name it ("CODEC_ID_H264" gives
    // "libx264"). Throws as RequirePlugin for "EncodersFF" with the action "encode <codec>",
    // and PluginError "Can not encode <codec>: the media libraries have no encoder for it".
    std::string EncoderFor(const std::string& codec) const;
    // The module option table of the last Initialize.
    ModuleOptionTable ModuleOptions() const;

private:
    CoreManager();
    ~CoreManager();

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Core
