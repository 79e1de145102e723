#pragma once

#include <map>
#include <string>
#include <vector>

namespace Velmor::Core {

// What a loaded plug-in gives the engine.
struct LoadedPlugin {
    std::string name;
    // Codec name as presets give it ("CODEC_ID_H264") to the media libraries' encoder.
    std::map<std::string, std::string> encoders;
};

// The plug-ins the engine ships with, in the order the loader loads them.
class PluginRegistry {
public:
    static const std::vector<std::string>& KnownPlugins();
    static bool IsKnown(const std::string& pluginName);

    // Loads a known plug-in. "EffectsFF", "DecodersFF" and "EncodersFF" first open their modules
    // (PluginModule), which map the media libraries, then ask the libraries for the filters that
    // titles and the audio mix are made with, for their demuxers and decoders, and for the
    // editor's encoders; the others find nothing to load in this build. Throws what opening the
    // module or the libraries throw.
    static LoadedPlugin Load(const std::string& pluginName);
};

} // namespace Velmor::Core
