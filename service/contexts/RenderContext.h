#pragma once

#include "service/contexts/AbstractContext.h"

#include <memory>

namespace EditorService {

// The controllers of composition, state, fast track, timeline and thumbnails. It reads no
// options and has no workers.
class EDITORSERVICE_EXPORT RenderContext : public AbstractContext {
public:
    RenderContext();
    ~RenderContext() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace EditorService
