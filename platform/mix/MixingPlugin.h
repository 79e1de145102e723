#pragma once

#include "platform/project/Edit.h"

namespace Mixing {

// Whether rendering a validated edit's sound takes the mix, which belongs to the engine's
// plug-in "EffectsFF": when it has sound to mix, a clip of an audio track or a video clip whose
// file's own sound plays. An edit of pictures alone, or of muted clips, renders silence without
// it.
bool needsMixing(const Project::Edit& edit);

// Throws Velmor::Core::PluginError "Can not render <project>: the plug-in EffectsFF is
// disabled" when the edit needs the mix and the running engine did not load the plug-in, and
// std::logic_error when no engine runs.
void requireMixing(const Project::Edit& edit);

} // namespace Mixing
