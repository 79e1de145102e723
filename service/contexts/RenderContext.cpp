#include "service/contexts/RenderContext.h"

#include "platform/editorlogic/CompositionController.h"
#include "platform/editorlogic/FastTrackControllerStub.h"
#include "platform/editorlogic/FrameExtractor.h"
#include "platform/editorlogic/StateController.h"
#include "platform/editorlogic/ThumbnailController.h"
#include "platform/editorlogic/TimelineController.h"

namespace EditorService {

class RenderContext::Private {
public:
    Private();

    Composition::Controller compositionController;
    State::Controller stateController;
    FastTrack::ControllerStub fastTrackController;
    Timeline::Controller timelineController;
    Thumbnail::Controller thumbnailController;
};

RenderContext::Private::Private()
    : thumbnailController(std::make_shared<Thumbnail::FrameExtractor>()) {}

RenderContext::RenderContext()
    : d(std::make_unique<Private>()) {}

RenderContext::~RenderContext() = default;

} // namespace EditorService
