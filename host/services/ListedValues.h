#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <vector>

// A stream that makes its values with `make` on the subscribing thread, when subscribed, emits
// them in order while the subscriber wants them, then completes; what `make` throws is the
// stream's error, and nothing is emitted then.
rxcpp::observable<nlohmann::json> listedValues(std::function<std::vector<nlohmann::json>()> make);
