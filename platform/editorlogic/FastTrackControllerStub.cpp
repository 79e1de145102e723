#include "platform/editorlogic/FastTrackControllerStub.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace FastTrack {

ControllerStub::ControllerStub() {
    Velmor::Testing::Probe::hit("FastTrack::ControllerStub::ControllerStub");
    Velmor::Testing::CallLog::record("FastTrack::ControllerStub::ControllerStub");
}

ControllerStub::~ControllerStub() {
    Velmor::Testing::CallLog::record("FastTrack::ControllerStub::~ControllerStub");
}

} // namespace FastTrack
