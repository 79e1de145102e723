#pragma once

#include <functional>
#include <string>

namespace Velmor::Testing {

// Named points inside the closed libraries ("Media::FileController::FileController") at which
// a test can make the next call fail or run an action of its own. Each arming is used once.
// Probes are separate from the CallLog: arming one records nothing.
class Probe {
public:
    // The next hit of the point throws std::runtime_error "Injected failure at <point>".
    static void failNext(const std::string& point);
    // The next hit of the point runs the action on the hitting thread; what it throws passes.
    static void onNext(const std::string& point, std::function<void()> action);
    // Disarms every point.
    static void clear();

    // Called by the libraries at each point.
    static void hit(const std::string& point);
};

} // namespace Velmor::Testing
