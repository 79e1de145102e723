#include "platform/foundation/OutputExists.h"

namespace Velmor {

OutputExists::OutputExists(const std::string& path)
    : std::runtime_error("Output file exists: " + path) {}

} // namespace Velmor
