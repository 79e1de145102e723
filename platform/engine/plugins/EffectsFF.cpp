#include "platform/av/CodecSets.h"
#include "platform/engine/PluginEntry.h"

// The filter library the effects draw titles with.
VELMOR_PLUGIN_ENTRY(Velmor::Core::LoadedPlugin&) {
    Velmor::AV::findFiltering();
}
