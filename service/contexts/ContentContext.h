#pragma once

#include "service/contexts/AbstractContext.h"

#include <memory>

namespace EditorService {

// The editor's content: the resource controller, the collection controllers, the packages and
// the content providers of imports, overlays, effects, transitions, animations, pan-and-zoom
// and themes. The constructor returns once the packages have loaded.
class EDITORSERVICE_EXPORT ContentContext : public AbstractContext {
public:
    ContentContext();
    ~ContentContext() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace EditorService
