#pragma once

#include <QString>
#include <nlohmann/json.hpp>

namespace Serialize::Json::detail {

// Reads one JSON value into a C++ value, and writes one back. The primary templates go through
// nlohmann::json's own conversions (to_json/from_json found by argument-dependent lookup); a
// type that needs other rules gets an explicit specialisation, declared next to the type so that
// every user sees it.
//
// Every failure is an exception of nlohmann::json.
template <class T> void load(const nlohmann::json& value, T& target) {
    value.get_to(target);
}

template <class T> void save(nlohmann::json& value, const T& source) {
    value = source;
}

// Integers: a JSON integer, or a floating-point number truncated toward zero, that fits the
// target. Another kind of value, a boolean included, raises type_error 302 "type must be number,
// but is <kind>"; a number that does not fit raises out_of_range 406 "number overflow converting
// '<value as JSON>' to <type>".
template <> void load<int>(const nlohmann::json& value, int& target);
template <> void load<long long>(const nlohmann::json& value, long long& target);
// A JSON boolean only; anything else raises type_error 302 "type must be boolean, but is <kind>".
template <> void load<bool>(const nlohmann::json& value, bool& target);
// A JSON string only, by from_json; anything else raises type_error 302.
template <> void load<QString>(const nlohmann::json& value, QString& target);

template <> void save<int>(nlohmann::json& value, const int& source);
template <> void save<long long>(nlohmann::json& value, const long long& source);
template <> void save<bool>(nlohmann::json& value, const bool& source);
template <> void save<QString>(nlohmann::json& value, const QString& source);

} // namespace Serialize::Json::detail
