#pragma once

#include <stdexcept>

namespace Velmor::Render {

// A render that stops before its end: thrown by a stage that gives up because the render stops
// (its own failure or another's, or a cancel), and by Runner::run after Runner::cancel. Its text
// is "Render cancelled"; whoever runs the render says what was cancelled.
class Cancelled : public std::runtime_error {
public:
    Cancelled()
        : std::runtime_error("Render cancelled") {}
};

} // namespace Velmor::Render
