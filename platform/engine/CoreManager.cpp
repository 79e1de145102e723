#include "platform/engine/CoreManager.h"

#include "platform/engine/CoreManagerOptions.h"
#include "platform/engine/PluginError.h"
#include "platform/engine/PluginRegistry.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace Velmor::Core {

class CoreManager::Private {
public:
    mutable std::mutex mutex;
    std::condition_variable loaded;
    std::thread loader;
    bool started = false;
    bool done = false;
    bool initialized = false;
    std::vector<LoadedPlugin> plugins;
    std::exception_ptr failure;
    ModuleOptionTable options;

    ~Private() { joinLoader(); }

    void joinLoader() {
        if (loader.joinable())
            loader.join();
    }

    std::vector<std::string> disabledPlugins() const {
        const auto module = options.find(CoreManagerOptions::MODULE_PLUGIN_LOADER);
        if (module == options.end())
            return {};
        const auto option = module->second.find(CoreManagerOptions::OPT_DISABLED_PLUGINS);
        if (option == module->second.end())
            return {};
        return option->second;
    }

    void load(std::vector<std::string> disabled, std::function<void()> onInitialized,
              boost::intrusive_ptr<Proc::ICoreTracker> tracker) {
        for (const auto& plugin : PluginRegistry::KnownPlugins()) {
            if (std::find(disabled.begin(), disabled.end(), plugin) != disabled.end())
                continue;
            try {
                auto loaded = PluginRegistry::Load(plugin);
                std::lock_guard<std::mutex> lock(mutex);
                plugins.push_back(std::move(loaded));
            } catch (...) {
                finish(std::current_exception());
                return;
            }
            if (tracker)
                tracker->OnPluginLoaded(plugin);
        }
        Testing::CallLog::record("PluginLoader::Finished");
        finish(nullptr);
        if (onInitialized)
            onInitialized();
    }

    void finish(std::exception_ptr error) {
        {
            std::lock_guard<std::mutex> lock(mutex);
            failure = error;
            initialized = !error;
            done = true;
        }
        loaded.notify_all();
    }

    const LoadedPlugin* find(const std::string& name) const {
        for (const auto& plugin : plugins) {
            if (plugin.name == name)
                return &plugin;
        }
        return nullptr;
    }
};

CoreManager::CoreManager()
    : d(std::make_unique<Private>()) {}

CoreManager::~CoreManager() = default;

CoreManager& CoreManager::Instance() {
    static CoreManager instance;
    return instance;
}

void CoreManager::Initialize(std::function<void()> onInitialized, const ModuleOptionTable& options,
                             boost::intrusive_ptr<Proc::ICoreTracker> tracker) {
    Testing::CallLog::record("CoreManager::Initialize");
    Testing::Probe::hit("CoreManager::Initialize");
    d->joinLoader();
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->options = options;
        d->plugins.clear();
        d->failure = nullptr;
        d->done = false;
        d->initialized = false;
        d->started = true;
    }
    d->loader = std::thread(&Private::load, d.get(), d->disabledPlugins(), std::move(onInitialized),
                            std::move(tracker));
}

void CoreManager::WaitUntilInitialized() {
    Testing::Probe::hit("CoreManager::WaitUntilInitialized");
    {
        std::unique_lock<std::mutex> lock(d->mutex);
        if (!d->started)
            throw std::logic_error("CoreManager::WaitUntilInitialized called before Initialize");
        d->loaded.wait(lock, [this] { return d->done; });
        if (d->failure)
            std::rethrow_exception(d->failure);
    }
    Testing::CallLog::record("CoreManager::WaitUntilInitialized");
}

void CoreManager::Uninitialize() {
    Testing::CallLog::record("CoreManager::Uninitialize");
    Testing::Probe::hit("CoreManager::Uninitialize");
    d->joinLoader();
    std::lock_guard<std::mutex> lock(d->mutex);
    d->plugins.clear();
    d->failure = nullptr;
    d->done = false;
    d->initialized = false;
    d->started = false;
}

bool CoreManager::IsInitialized() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->initialized;
}

std::vector<std::string> CoreManager::LoadedPlugins() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    std::vector<std::string> names;
    for (const auto& plugin : d->plugins)
        names.push_back(plugin.name);
    return names;
}

bool CoreManager::IsPluginLoaded(const std::string& pluginName) const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->find(pluginName) != nullptr;
}

void CoreManager::RequirePlugin(const std::string& pluginName, const std::string& action) const {
    std::lock_guard<std::mutex> lock(d->mutex);
    if (!d->initialized)
        throw std::logic_error("Can not " + action + ": the engine is not running");
    if (!d->find(pluginName))
        throw PluginError("Can not " + action + ": the plug-in " + pluginName + " is disabled");
}

std::string CoreManager::EncoderFor(const std::string& codec) const {
    const std::string action = "encode " + codec;
    RequirePlugin("EncodersFF", action);
    std::lock_guard<std::mutex> lock(d->mutex);
    const auto& encoders = d->find("EncodersFF")->encoders;
    const auto found = encoders.find(codec);
    if (found == encoders.end())
        throw PluginError("Can not " + action + ": the media libraries have no encoder for it");
    return found->second;
}

ModuleOptionTable CoreManager::ModuleOptions() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->options;
}

} // namespace Velmor::Core
