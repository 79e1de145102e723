#include "media/QueuedValue.h"

namespace EditorService {

nlohmann::json queuedValue(const std::string& service, const std::string& key,
                           const std::string& name, int ahead) {
    return {{service, {{key, name}, {"queued", true}, {"ahead", ahead}}}};
}

} // namespace EditorService
