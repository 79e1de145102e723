#include "platform/serialize/JsonReference.h"

namespace Serialize::Json {

namespace {

std::optional<std::uint64_t> idUnder(const nlohmann::json& value, const char* key) {
    if (!value.is_object())
        return std::nullopt;
    const auto found = value.find(key);
    if (found == value.end())
        return std::nullopt;
    if (found->is_number_unsigned())
        return found->get<std::uint64_t>();
    if (found->is_number_integer() && found->get<std::int64_t>() >= 0)
        return static_cast<std::uint64_t>(found->get<std::int64_t>());
    return std::nullopt;
}

} // namespace

std::optional<std::uint64_t> getReferenceObjectId(const nlohmann::json& value) {
    return idUnder(value, ReferenceKey);
}

std::optional<std::uint64_t> getObjectId(const nlohmann::json& value) {
    return idUnder(value, ObjectIdKey);
}

} // namespace Serialize::Json
