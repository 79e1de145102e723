#pragma once

#include <cstddef>
#include <string>

namespace Velmor::AV {

// One function of the media libraries, as a module on them hands it out.
struct MediaFunction {
    const char* name;
    void* address;
};

// What a module on the media libraries exports, under mediaFunctionTableName: every function of
// MediaFunctions.def with its address in the libraries the module links.
using MediaFunctionTable = const MediaFunction* (*)(std::size_t* count);
inline constexpr const char* mediaFunctionTableName = "velmorMediaFunctions";

// The media stages call the media libraries through slots, so that no program links them and a
// process maps them only once a module on them is opened. Before that, a call fails with
// MediaError "Can not call <function>: no module on the media libraries is open".
class MediaLibraries {
public:
    // Opens the module (never closed: the libraries keep process-wide state) and points every
    // slot at its functions; opening a second module changes nothing. Throws MediaError with the
    // loader's reason, "<path> has no table velmorMediaFunctions" or "<path> lacks <function>".
    static void open(const std::string& modulePath);
    static bool isOpen();
};

} // namespace Velmor::AV

// For programs that use the media stages with no engine to open a module for them (tests,
// benchmarks): opens the module when the program links the stages, does nothing otherwise.
extern "C" void velmorOpenMediaLibraries(const char* modulePath) __attribute__((weak));

namespace Velmor::AV {

inline void openMediaLibrariesIfLinked(const char* modulePath) {
    if (velmorOpenMediaLibraries)
        velmorOpenMediaLibraries(modulePath);
}

} // namespace Velmor::AV
