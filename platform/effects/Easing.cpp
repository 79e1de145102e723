#include "platform/effects/Easing.h"

#include <algorithm>

namespace Effects {

const std::vector<std::string>& easingNames() {
    static const std::vector<std::string> names{"linear", "ease-in", "ease-out", "ease-in-out"};
    return names;
}

const std::string& easingName(Easing easing) {
    return easingNames().at(static_cast<std::size_t>(easing));
}

std::optional<Easing> easingNamed(const std::string& name) {
    const auto& names = easingNames();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Easing>(found - names.begin());
}

double ease(Easing easing, double progress) {
    const double t = std::clamp(progress, 0.0, 1.0);
    switch (easing) {
    case Easing::Linear:
        return t;
    case Easing::EaseIn:
        return t * t * t;
    case Easing::EaseOut:
        return 1 - (1 - t) * (1 - t) * (1 - t);
    case Easing::EaseInOut:
        return t < 0.5 ? 4 * t * t * t : 1 - 4 * (1 - t) * (1 - t) * (1 - t);
    }
    return t;
}

} // namespace Effects
