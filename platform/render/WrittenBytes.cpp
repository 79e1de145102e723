#include "platform/render/WrittenBytes.h"

#include "platform/av/MediaError.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace Velmor::Render {

std::int64_t writtenBytes(int descriptor, const std::string& name) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0)
        throw AV::MediaError("Can not write " + name + ": " + std::strerror(errno));
    return status.st_size;
}

std::int64_t bitRate(std::int64_t bytes, std::int64_t durationMs) {
    return durationMs > 0 ? bytes * 8 * 1000 / durationMs : 0;
}

} // namespace Velmor::Render
