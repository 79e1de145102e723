// Loaded into the host with LD_PRELOAD by tests: the system's randomness gives only zero bytes,
// so that the letters of every temporary's name are known in advance and a test can plant a link
// at each name a writer could choose.
#include <cstring>
#include <sys/types.h>

extern "C" ssize_t getrandom(void* buffer, size_t length, unsigned int) {
    std::memset(buffer, 0, length);
    return static_cast<ssize_t>(length);
}
