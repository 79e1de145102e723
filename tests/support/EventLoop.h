#pragma once

#include <chrono>
#include <functional>

namespace EditorService::Testing {

// Processes the main thread's events until done() holds or the generous limit has passed.
// Returns done() at the end, so a test asserts on the outcome, never on how long it took.
bool spinUntil(const std::function<bool()>& done,
               std::chrono::milliseconds limit = std::chrono::seconds(60));

// Processes the events that are due now, and those they post, for about the given time.
void spinFor(std::chrono::milliseconds duration);

} // namespace EditorService::Testing
