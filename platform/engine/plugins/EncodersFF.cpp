#include "platform/av/CodecSets.h"
#include "platform/engine/PluginEntry.h"

// The media libraries' encoders for the codecs presets name.
VELMOR_PLUGIN_ENTRY(Velmor::Core::LoadedPlugin& plugin) {
    plugin.encoders = Velmor::AV::findEncoders();
}
