#include "platform/av/MediaLibraries.h"

#include "platform/av/MediaError.h"

#include <dlfcn.h>
#include <map>
#include <mutex>

#ifdef VELMOR_MEDIA_ON_DEMAND
// The slots the jumps of MediaFunctions.S go through, each pointing at first at a stub that
// calls velmorMediaFunctionUnbound with the function's name.
#define MEDIA_FUNCTION(name)                                                                       \
    extern "C" __attribute__((visibility("hidden"))) void* velmorSlot_##name;
#include "platform/av/MediaFunctions.def"
#undef MEDIA_FUNCTION

extern "C" [[noreturn]] __attribute__((visibility("hidden"))) void
velmorMediaFunctionUnbound(const char* name) {
    throw Velmor::AV::MediaError(std::string("Can not call ") + name
                                 + ": no module on the media libraries is open");
}
#endif

namespace Velmor::AV {

namespace {

MediaFunctionTable tableOf(const std::string& modulePath) {
    // Lazily, as a program that links the libraries binds them: binding every function of their
    // whole tree at once costs the engine's start a few milliseconds more.
    void* module = ::dlopen(modulePath.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!module)
        throw MediaError(::dlerror());
    void* table = ::dlsym(module, mediaFunctionTableName);
    if (!table)
        throw MediaError(modulePath + " has no table " + mediaFunctionTableName);
    return reinterpret_cast<MediaFunctionTable>(table);
}

#ifdef VELMOR_MEDIA_ON_DEMAND
struct Slot {
    const char* name;
    void** address;
};

#define MEDIA_FUNCTION(name) {#name, &velmorSlot_##name},
const Slot slots[] = {
#include "platform/av/MediaFunctions.def"
};
#undef MEDIA_FUNCTION

// Every slot is checked before any is written, so that a module that fails leaves them all
// unbound.
void bind(const std::string& modulePath, const MediaFunction* functions, std::size_t count) {
    std::map<std::string, void*> byName;
    for (std::size_t i = 0; i < count; ++i)
        byName.emplace(functions[i].name, functions[i].address);
    for (const Slot& slot : slots) {
        const auto found = byName.find(slot.name);
        if (found == byName.end() || !found->second)
            throw MediaError(modulePath + " lacks " + slot.name);
    }
    for (const Slot& slot : slots)
        *slot.address = byName[slot.name];
}
#else
// The libraries are linked: the stages call them directly.
void bind(const std::string&, const MediaFunction*, std::size_t) {}
#endif

// Whether the slots point at a module's functions; guarded by opening().
bool opened = false;

std::mutex& opening() {
    static std::mutex mutex;
    return mutex;
}

} // namespace

void MediaLibraries::open(const std::string& modulePath) {
    const std::lock_guard<std::mutex> lock(opening());
    const MediaFunctionTable table = tableOf(modulePath);
    if (opened)
        return;
    std::size_t count = 0;
    const MediaFunction* functions = table(&count);
    bind(modulePath, functions, count);
    opened = true;
}

bool MediaLibraries::isOpen() {
    const std::lock_guard<std::mutex> lock(opening());
    return opened;
}

} // namespace Velmor::AV

extern "C" void velmorOpenMediaLibraries(const char* modulePath) {
    Velmor::AV::MediaLibraries::open(modulePath);
}
