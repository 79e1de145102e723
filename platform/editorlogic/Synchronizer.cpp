#include "platform/editorlogic/Synchronizer.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Connection {

Synchronizer::Synchronizer() {
    Velmor::Testing::Probe::hit("Connection::Synchronizer::Synchronizer");
    Velmor::Testing::CallLog::record("Connection::Synchronizer::Synchronizer");
}

Synchronizer::~Synchronizer() {
    Velmor::Testing::CallLog::record("Connection::Synchronizer::~Synchronizer");
}

} // namespace Connection
