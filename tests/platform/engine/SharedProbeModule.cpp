#include "platform/engine/PluginEntry.h"
#include "platform/engine/Probe.h"

// A module that links no library: its entry hits a probe, which only a test of the program that
// opened it can have armed when the module finds the program's probes rather than a copy.
VELMOR_PLUGIN_ENTRY(Velmor::Core::LoadedPlugin&) {
    Velmor::Testing::Probe::hit("SharedProbe::entry");
}
