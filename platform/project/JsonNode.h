#pragma once

#include "platform/effects/Colour.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace Project {

// A value of a project file with where it stands ("tracks[0].clips[1].in_ms"), read as the type
// it must have. Every failure is a ProjectError that names the project file and the place:
//     "<project>: <place>: expected <what>, found <value>"
//     "<project>: unknown key \"<key>\" at <place>; available: <keys>"
//     "<project>: unknown <what> \"<name>\" at <place>; available: <names>"
//     "<project>: <place>: \"<key>\" is missing"
// The value is borrowed: the document must outlive the node.
class JsonNode {
public:
    JsonNode(const nlohmann::json& value, std::string place, std::string project);

    const std::string& place() const { return where; }
    const nlohmann::json& value() const { return *json; }
    bool isNull() const { return json->is_null(); }

    // Requires an object. Whether it has the key.
    bool has(const std::string& key) const;
    // Requires an object; the value of a key, which must be there.
    JsonNode at(const std::string& key) const;
    // Requires an object; the value of a key if it is there.
    std::optional<JsonNode> find(const std::string& key) const;
    // Requires an object whose keys are all among `keys`, listed in the message in that order.
    void allowOnly(const std::vector<std::string>& keys) const;
    // Requires an array; its items.
    std::vector<JsonNode> items() const;

    // Whole milliseconds, from `least` up.
    std::int64_t milliseconds(std::int64_t least = 0) const;
    // A whole number from `least` to `most`, `what` naming it ("a whole number of pixels").
    std::int64_t wholeNumber(std::int64_t least, std::int64_t most, const std::string& what) const;
    // A finite number from `least` to `most`.
    double number(double least, double most, const std::string& what) const;
    bool boolean() const;
    std::string text() const;
    Effects::Colour colour() const;
    // One of `names`, `what` naming the kind ("transition", "fit").
    std::size_t choice(const std::vector<std::string>& names, const std::string& what) const;

    // Throws "<project>: <place>: <reason>".
    [[noreturn]] void fail(const std::string& reason) const;
    // Throws "<project>: <place>: expected <expected>, found <value>".
    [[noreturn]] void expected(const std::string& expected) const;
    // Throws "<project>: unknown <what> \"<name>\" at <place>; available: <names>".
    [[noreturn]] void unknown(const std::string& what, const std::string& name,
                              const std::vector<std::string>& names) const;

private:
    const nlohmann::json* json;
    std::string where;
    std::string project;

    void requireObject() const;
    std::string childPlace(const std::string& key) const;
};

// The names joined by ", ".
std::string joined(const std::vector<std::string>& names);

} // namespace Project
