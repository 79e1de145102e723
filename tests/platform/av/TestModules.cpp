#include "platform/av/MediaLibraries.h"

// Modules that open but can not fill the media libraries' slots: one exports no table, the
// other a table with no function in it.
#ifdef TEST_MODULE_NoFunctions
extern "C" __attribute__((visibility("default"))) const Velmor::AV::MediaFunction*
velmorMediaFunctions(std::size_t* count) {
    *count = 0;
    return nullptr;
}
#endif
