#include "platform/editorlogic/FrameExtractor.h"

#include "platform/editorlogic/ThumbnailTaskProvider.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <algorithm>

namespace Thumbnail {

FrameExtractor::FrameExtractor() {
    Velmor::Testing::Probe::hit("Thumbnail::FrameExtractor::FrameExtractor");
    Velmor::Testing::CallLog::record("Thumbnail::FrameExtractor::FrameExtractor");
}

FrameExtractor::~FrameExtractor() {
    Velmor::Testing::CallLog::record("Thumbnail::FrameExtractor::~FrameExtractor");
}

void FrameExtractor::addProvider(const std::shared_ptr<TaskProvider>& provider) {
    if (!provider)
        return;
    if (std::find(m_providers.begin(), m_providers.end(), provider) != m_providers.end())
        return;
    m_providers.push_back(provider);
}

void FrameExtractor::removeProvider(const std::shared_ptr<TaskProvider>& provider) {
    m_providers.erase(std::remove(m_providers.begin(), m_providers.end(), provider),
                      m_providers.end());
}

void FrameExtractor::process() {
    const auto providers = m_providers;
    for (const auto& provider : providers) {
        while (auto task = provider->takeTask())
            task();
    }
}

} // namespace Thumbnail
