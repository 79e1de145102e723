#pragma once

#include <stdexcept>
#include <string>

namespace Velmor {

// A file that could not be written, with the system's reason: "Can not write <path>: <reason>".
class WriteError : public std::runtime_error {
public:
    // `error` is an errno value.
    WriteError(const std::string& path, int error);
};

} // namespace Velmor
