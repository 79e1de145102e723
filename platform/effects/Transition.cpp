#include "platform/effects/Transition.h"

namespace Effects {

Transition::~Transition() = default;

} // namespace Effects
