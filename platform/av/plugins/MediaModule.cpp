#include "platform/av/MediaLibraries.h"

#include <iterator>

// Declared by name only: the module hands out addresses, and never calls a function itself.
#define MEDIA_FUNCTION(name) extern "C" void name();
#include "platform/av/MediaFunctions.def"
#undef MEDIA_FUNCTION

namespace {

#define MEDIA_FUNCTION(name) {#name, reinterpret_cast<void*>(&name)},
const Velmor::AV::MediaFunction functions[] = {
#include "platform/av/MediaFunctions.def"
};
#undef MEDIA_FUNCTION

} // namespace

extern "C" __attribute__((visibility("default"))) const Velmor::AV::MediaFunction*
velmorMediaFunctions(std::size_t* count) {
    *count = std::size(functions);
    return functions;
}
