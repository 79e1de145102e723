#include "platform/project/JsonNode.h"

#include "platform/project/ProjectError.h"

#include <cmath>

namespace Project {
namespace {

// The value as it stands in the file, cut short when long.
std::string shown(const nlohmann::json& value) {
    const std::string text = value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    constexpr std::size_t longest = 40;
    if (text.size() <= longest)
        return text;
    return text.substr(0, longest - 3) + "...";
}

} // namespace

std::string joined(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list;
}

JsonNode::JsonNode(const nlohmann::json& value, std::string place, std::string project)
    : json(&value)
    , where(std::move(place))
    , project(std::move(project)) {}

void JsonNode::fail(const std::string& reason) const {
    throw ProjectError(project + ": " + where + ": " + reason);
}

void JsonNode::expected(const std::string& expected) const {
    fail("expected " + expected + ", found " + shown(*json));
}

void JsonNode::unknown(const std::string& what, const std::string& name,
                       const std::vector<std::string>& names) const {
    throw ProjectError(project + ": unknown " + what + " \"" + name + "\" at " + where
                       + "; available: " + joined(names));
}

void JsonNode::requireObject() const {
    if (!json->is_object())
        expected("an object");
}

std::string JsonNode::childPlace(const std::string& key) const {
    return where.empty() ? key : where + "." + key;
}

bool JsonNode::has(const std::string& key) const {
    requireObject();
    return json->contains(key);
}

JsonNode JsonNode::at(const std::string& key) const {
    if (const auto child = find(key))
        return *child;
    fail("\"" + key + "\" is missing");
}

std::optional<JsonNode> JsonNode::find(const std::string& key) const {
    requireObject();
    const auto found = json->find(key);
    if (found == json->end())
        return std::nullopt;
    return JsonNode(*found, childPlace(key), project);
}

void JsonNode::allowOnly(const std::vector<std::string>& keys) const {
    requireObject();
    for (const auto& [key, value] : json->items()) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            JsonNode(value, childPlace(key), project).unknown("key", key, keys);
    }
}

std::vector<JsonNode> JsonNode::items() const {
    if (!json->is_array())
        expected("an array");
    std::vector<JsonNode> all;
    for (std::size_t index = 0; index < json->size(); ++index)
        all.emplace_back((*json)[index], where + "[" + std::to_string(index) + "]", project);
    return all;
}

std::int64_t JsonNode::milliseconds(std::int64_t least) const {
    const std::string what =
        least > 0 ? "a whole number of milliseconds above " + std::to_string(least - 1)
                  : "a whole number of milliseconds, 0 or more";
    return wholeNumber(least, std::int64_t(1) << 40, what);
}

std::int64_t JsonNode::wholeNumber(std::int64_t least, std::int64_t most,
                                   const std::string& what) const {
    if (json->is_number_unsigned()) {
        const auto value = json->get<std::uint64_t>();
        if (value <= static_cast<std::uint64_t>(most) && static_cast<std::int64_t>(value) >= least)
            return static_cast<std::int64_t>(value);
        expected(what);
    }
    if (!json->is_number_integer())
        expected(what);
    const auto value = json->get<std::int64_t>();
    if (value < least || value > most)
        expected(what);
    return value;
}

double JsonNode::number(double least, double most, const std::string& what) const {
    if (!json->is_number())
        expected(what);
    const double value = json->get<double>();
    if (!std::isfinite(value) || value < least || value > most)
        expected(what);
    return value;
}

bool JsonNode::boolean() const {
    if (!json->is_boolean())
        expected("true or false");
    return json->get<bool>();
}

std::string JsonNode::text() const {
    if (!json->is_string())
        expected("a string");
    return json->get<std::string>();
}

Effects::Colour JsonNode::colour() const {
    const auto colour =
        json->is_string() ? Effects::parseColour(json->get<std::string>()) : std::nullopt;
    if (!colour)
        expected("a colour \"#rrggbb\" or \"#rrggbbaa\"");
    return *colour;
}

std::size_t JsonNode::choice(const std::vector<std::string>& names, const std::string& what) const {
    const std::string name = text();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        unknown(what, name, names);
    return static_cast<std::size_t>(found - names.begin());
}

} // namespace Project
