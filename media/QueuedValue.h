#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace EditorService {

// What work waiting for a shared place emits: {"<service>": {"<key>": <name>, "queued": true,
// "ahead"}}, `key` and `name` those its other values use for what it works on, `ahead` how many
// wait before it.
nlohmann::json queuedValue(const std::string& service, const std::string& key,
                           const std::string& name, int ahead);

} // namespace EditorService
