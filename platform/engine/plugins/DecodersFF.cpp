#include "platform/av/CodecSets.h"
#include "platform/engine/PluginEntry.h"

// The media libraries' demuxers and decoders: every reading of media needs them.
VELMOR_PLUGIN_ENTRY(Velmor::Core::LoadedPlugin&) {
    Velmor::AV::findDecoding();
}
