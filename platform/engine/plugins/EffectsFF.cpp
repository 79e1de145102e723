#include "platform/av/EffectFilters.h"
#include "platform/engine/PluginEntry.h"

// The media libraries' filters that titles and the audio mix are made with.
VELMOR_PLUGIN_ENTRY(Velmor::Core::LoadedPlugin&) {
    Velmor::AV::findEffectFilters();
}
