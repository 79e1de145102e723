#include "platform/foundation/WriteError.h"

#include <cstring>

namespace Velmor {

WriteError::WriteError(const std::string& path, int error)
    : std::runtime_error("Can not write " + path + ": " + std::strerror(error)) {}

} // namespace Velmor
