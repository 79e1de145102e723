#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>

namespace Serialize::Json {

// A JSON object may stand for another value of the same document: {"$ref": 7} refers to the
// object that carries {"$id": 7, ...}. Ids are non-negative integers. An input archive registers
// a value under its "$id" when it enters that value (the root when the archive is built), so a
// reference can only point at a value that has been entered before.
inline constexpr const char* ReferenceKey = "$ref";
inline constexpr const char* ObjectIdKey = "$id";

// The id a value refers to: set when the value is an object whose "$ref" holds a non-negative
// integer. Anything else, a "$ref" of another kind included, is no reference.
std::optional<std::uint64_t> getReferenceObjectId(const nlohmann::json& value);

// The id a value is registered under: set when the value is an object whose "$id" holds a
// non-negative integer.
std::optional<std::uint64_t> getObjectId(const nlohmann::json& value);

} // namespace Serialize::Json
