#pragma once

#include "platform/effects/Transition.h"

#include <memory>
#include <string>
#include <vector>

namespace Effects {

// One transition the renderer draws, as projects name it.
struct TransitionKind {
    std::string name;
    std::string description;
};

// Every transition the renderer draws, in the order users see them: fade, fade-black,
// fade-white, dissolve, wipe-left, wipe-right, wipe-up, wipe-down, slide-left, slide-right,
// slide-up, slide-down, circle-open, circle-close.
const std::vector<TransitionKind>& transitionKinds();
// Whether a name is one of them, compared with case.
bool isTransition(const std::string& name);
// The names joined by ", ", for messages that list what is available.
std::string transitionNameList();

// The transition of a name. Throws std::invalid_argument "Unknown transition \"<name>\"" for
// any other name.
std::unique_ptr<Transition> makeTransition(const std::string& name);

} // namespace Effects
