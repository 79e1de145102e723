#include "platform/engine/PluginRegistry.h"

#include "platform/av/CodecSets.h"
#include "platform/av/EffectFilters.h"
#include "platform/engine/PluginModule.h"
#include "platform/engine/Probe.h"

#include <algorithm>

namespace Velmor::Core {

const std::vector<std::string>& PluginRegistry::KnownPlugins() {
    static const std::vector<std::string> plugins{
        "EffectsIPP", "Effects",         "EffectsFF",  "EffectsOgl",   "DecodersFF",
        "EncodersFF", "EncoderLossless", "EncoderAMF", "EncoderNVENC", "DecoderNVDEC",
        "EncoderIM",  "DecoderMF",       "EncoderMF",  "DecoderRAW"};
    return plugins;
}

bool PluginRegistry::IsKnown(const std::string& pluginName) {
    const auto& plugins = KnownPlugins();
    return std::find(plugins.begin(), plugins.end(), pluginName) != plugins.end();
}

LoadedPlugin PluginRegistry::Load(const std::string& pluginName) {
    Testing::Probe::hit("PluginRegistry::Load");
    LoadedPlugin plugin{pluginName, {}};
    if (PluginModule::IsModule(pluginName))
        PluginModule::Load(pluginName);
    if (pluginName == "DecodersFF")
        AV::findDecoding();
    else if (pluginName == "EncodersFF")
        plugin.encoders = AV::findEncoders();
    else if (pluginName == "EffectsFF")
        AV::findEffectFilters();
    return plugin;
}

} // namespace Velmor::Core
