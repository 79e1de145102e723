#pragma once

namespace Serialize::Json::Config {

// Flags of the JSON archives, given to their constructors as an int.
// With ExplicitOptionalNulls an empty optional field is written as null, and reading requires
// every optional field's key to be present, null or not.
constexpr int ExplicitOptionalNulls = 1 << 0;

} // namespace Serialize::Json::Config
