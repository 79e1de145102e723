#pragma once

#include <cstdint>
#include <string>

namespace Velmor::Render {

// The size of the file open at `descriptor`, named `name` in failures. Throws AV::MediaError
// "Can not write <name>: <reason>".
std::int64_t writtenBytes(int descriptor, const std::string& name);

// Bits per second of `bytes` over `durationMs`; 0 for no duration.
std::int64_t bitRate(std::int64_t bytes, std::int64_t durationMs);

} // namespace Velmor::Render
