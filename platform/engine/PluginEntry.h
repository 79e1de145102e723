#pragma once

#include "platform/engine/PluginRegistry.h"

// What a plug-in built as a module of its own offers the engine: one C function, found by name
// once the module is open, that does the plug-in's loading and fills in what it gives.
namespace Velmor::Core {

using PluginEntry = void (*)(LoadedPlugin& plugin);

inline constexpr const char* pluginEntryName = "velmorLoadPlugin";

} // namespace Velmor::Core

// Marks a module's entry: modules hide every other symbol, the media libraries' code included.
#define VELMOR_PLUGIN_ENTRY extern "C" __attribute__((visibility("default"))) void velmorLoadPlugin
