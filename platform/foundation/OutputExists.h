#pragma once

#include <stdexcept>
#include <string>

namespace Velmor {

// An output that was to be kept stood at its path when the new one was ready: "Output file
// exists: <path>".
class OutputExists : public std::runtime_error {
public:
    explicit OutputExists(const std::string& path);
};

} // namespace Velmor
