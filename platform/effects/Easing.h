#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Effects {

// How a movement spreads over its time: steadily, starting slowly, ending slowly, or both.
enum class Easing { Linear, EaseIn, EaseOut, EaseInOut };

// "linear", "ease-in", "ease-out", "ease-in-out", in the order of the enumeration.
const std::vector<std::string>& easingNames();
const std::string& easingName(Easing easing);
// The easing of a name, compared with case; empty for any other text.
std::optional<Easing> easingNamed(const std::string& name);

// The share of the movement done at `progress` (0 to 1, clamped): cubic curves, so ease-in
// starts at rest, ease-out ends at rest and ease-in-out does both, each reaching 1 at 1.
double ease(Easing easing, double progress);

} // namespace Effects
