#pragma once

#include "service/api/EditorServiceExport.h"

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace EditorService {

// The time limit on one command's stream: `values` fails with rxcpp::timeout_error when it stays
// silent for `limit`, counted from the subscription and again from each value. On expiry
// `onExpiry` is called first, on the timer's thread; what it throws (std::bad_function_call
// when it is empty) fails the stream in place of the timeout error. Values, the end and the
// error are delivered through `delivery`. Time comes only from the two coordinations, so a
// test can hand in a scheduler of its own.
EDITORSERVICE_EXPORT rxcpp::observable<nlohmann::json>
limitOnSilence(const rxcpp::observable<nlohmann::json>& values,
               std::chrono::duration<std::int64_t> limit, std::function<void()> onExpiry,
               const rxcpp::observe_on_one_worker& timer,
               const rxcpp::observe_on_one_worker& delivery);

} // namespace EditorService
