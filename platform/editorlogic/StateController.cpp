#include "platform/editorlogic/StateController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace State {

Controller::Controller() {
    Velmor::Testing::Probe::hit("State::Controller::Controller");
    Velmor::Testing::CallLog::record("State::Controller::Controller");
}

Controller::~Controller() {
    Velmor::Testing::CallLog::record("State::Controller::~Controller");
}

} // namespace State
