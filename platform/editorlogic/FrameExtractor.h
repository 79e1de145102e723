#pragma once

#include "platform/editorlogic/ThumbnailExtractor.h"

#include <vector>

namespace Thumbnail {

// Extracts thumbnails from decoded frames. process() runs every task its providers have now,
// provider by provider in the order they were added.
class FrameExtractor : public Extractor {
public:
    FrameExtractor();
    ~FrameExtractor() override;

    void addProvider(const std::shared_ptr<TaskProvider>& provider) override;
    void removeProvider(const std::shared_ptr<TaskProvider>& provider) override;
    void process() override;

private:
    std::vector<std::shared_ptr<TaskProvider>> m_providers;
};

} // namespace Thumbnail
