#pragma once

#include "media/WaitingLine.h"

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace EditorService {

// Where a call to a controller waits for its turn and how it says so: the line of the calls
// that share the controller's place, the value it emits while it waits given how many wait
// before it, and the coordination that times those values (see QueuedValueTimer).
struct WaitingPlace {
    std::shared_ptr<WaitingLine> line;
    std::function<nlohmann::json(int ahead)> queued;
    rxcpp::observe_on_one_worker timer;
};

} // namespace EditorService
