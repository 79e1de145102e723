#include "platform/editorlogic/CompositionController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Composition {

Controller::Controller() {
    Velmor::Testing::Probe::hit("Composition::Controller::Controller");
    Velmor::Testing::CallLog::record("Composition::Controller::Controller");
}

Controller::~Controller() {
    Velmor::Testing::CallLog::record("Composition::Controller::~Controller");
}

} // namespace Composition
