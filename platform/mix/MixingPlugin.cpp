#include "platform/mix/MixingPlugin.h"

#include "platform/engine/CoreManager.h"
#include "platform/mix/MixPlan.h"

namespace Mixing {

bool needsMixing(const Project::Edit& edit) {
    return planMix(edit).hasSound();
}

void requireMixing(const Project::Edit& edit) {
    if (!needsMixing(edit))
        return;
    Velmor::Core::CoreManager::Instance().RequirePlugin("EffectsFF",
                                                        "render " + edit.projectFile.toStdString());
}

} // namespace Mixing
