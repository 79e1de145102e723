#include "platform/serialize/JsonDetail.h"

#include "platform/serialize/QStringJson.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

namespace Serialize::Json::detail {

namespace {

[[noreturn]] void throwOverflow(const nlohmann::json& value, const char* typeName) {
    throw nlohmann::json::out_of_range::create(
        406, "number overflow converting '" + value.dump() + "' to " + typeName, &value);
}

template <class T> T integerOf(const nlohmann::json& value, const char* typeName) {
    constexpr auto lowest = std::numeric_limits<T>::min();
    constexpr auto highest = std::numeric_limits<T>::max();
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        if (number > static_cast<std::uint64_t>(highest))
            throwOverflow(value, typeName);
        return static_cast<T>(number);
    }
    if (value.is_number_integer()) {
        const auto number = value.get<std::int64_t>();
        if (number < lowest || number > highest)
            throwOverflow(value, typeName);
        return static_cast<T>(number);
    }
    if (value.is_number_float()) {
        const double truncated = std::trunc(value.get<double>());
        // The bounds are powers of two, so they are exact in a double.
        const double bound = std::ldexp(1.0, std::numeric_limits<T>::digits);
        if (!std::isfinite(truncated) || truncated < -bound || truncated >= bound)
            throwOverflow(value, typeName);
        return static_cast<T>(truncated);
    }
    throw nlohmann::json::type_error::create(
        302, std::string("type must be number, but is ") + value.type_name(), &value);
}

} // namespace

template <> void load<int>(const nlohmann::json& value, int& target) {
    target = integerOf<int>(value, "int");
}

template <> void load<long long>(const nlohmann::json& value, long long& target) {
    target = integerOf<long long>(value, "long long");
}

template <> void load<bool>(const nlohmann::json& value, bool& target) {
    target = value.get<bool>();
}

template <> void load<QString>(const nlohmann::json& value, QString& target) {
    from_json(value, target);
}

template <> void save<int>(nlohmann::json& value, const int& source) {
    value = source;
}

template <> void save<long long>(nlohmann::json& value, const long long& source) {
    value = source;
}

template <> void save<bool>(nlohmann::json& value, const bool& source) {
    value = source;
}

template <> void save<QString>(nlohmann::json& value, const QString& source) {
    to_json(value, source);
}

} // namespace Serialize::Json::detail
