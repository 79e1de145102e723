#include "platform/engine/PluginEntry.h"

// The effects the renderer draws do not live here yet, so the plug-in has nothing to ask the
// media libraries for: it maps none of them, libavfilter's large tree of dependencies least of
// all, which every start of the engine would otherwise pay for.
VELMOR_PLUGIN_ENTRY(Velmor::Core::LoadedPlugin&) {}
