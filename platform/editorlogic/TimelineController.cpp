#include "platform/editorlogic/TimelineController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Timeline {

Controller::Controller() {
    Velmor::Testing::Probe::hit("Timeline::Controller::Controller");
    Velmor::Testing::CallLog::record("Timeline::Controller::Controller");
}

Controller::~Controller() {
    Velmor::Testing::CallLog::record("Timeline::Controller::~Controller");
}

} // namespace Timeline
