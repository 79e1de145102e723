#pragma once

#include "platform/editorlogic/ThumbnailRequest.h"

#include <memory>

namespace Thumbnail {

class TaskProvider;

// Extracts thumbnails for the tasks of its providers.
class Extractor {
public:
    Extractor() = default;
    Extractor(const Extractor&) = delete;
    Extractor& operator=(const Extractor&) = delete;
    virtual ~Extractor();

    virtual void addProvider(const std::shared_ptr<TaskProvider>& provider) = 0;
    virtual void removeProvider(const std::shared_ptr<TaskProvider>& provider) = 0;
    virtual void process() = 0;
    // Takes one thumbnail now, on the calling thread, and writes it to the request's output.
    virtual Result extract(const Request& request) = 0;
};

} // namespace Thumbnail
