#include "platform/editorlogic/SourceController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Media {

SourceController::SourceController() {
    Velmor::Testing::Probe::hit("Media::SourceController::SourceController");
    Velmor::Testing::CallLog::record("Media::SourceController::SourceController");
}

SourceController::~SourceController() {
    Velmor::Testing::CallLog::record("Media::SourceController::~SourceController");
}

} // namespace Media
