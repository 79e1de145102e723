#include "platform/content/EffectContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Effect {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("Effect::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Effect::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Effect::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    return {QStringLiteral("Blur"), QStringLiteral("Sharpen"), QStringLiteral("Sepia"),
            QStringLiteral("Vignette")};
}

} // namespace Effect
