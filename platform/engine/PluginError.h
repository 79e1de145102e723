#pragma once

#include <stdexcept>

namespace Velmor::Core {

// Work that needs a plug-in the engine did not load: "Can not read media: the plug-in
// DecodersFF is disabled".
class PluginError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Velmor::Core
