#include "platform/editorlogic/StreamProcessorFactory.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Core {

StreamProcessorFactory::StreamProcessorFactory() {
    Velmor::Testing::Probe::hit("Core::StreamProcessorFactory::StreamProcessorFactory");
    Velmor::Testing::CallLog::record("Core::StreamProcessorFactory::StreamProcessorFactory");
}

StreamProcessorFactory::~StreamProcessorFactory() {
    Velmor::Testing::CallLog::record("Core::StreamProcessorFactory::~StreamProcessorFactory");
}

QString StreamProcessorFactory::videoStreamCutterFor(const QString& codec) const {
    return QStringLiteral("VideoStreamCutter:") + codec;
}

QString StreamProcessorFactory::audioStreamCutterFor(const QString& codec) const {
    return QStringLiteral("AudioStreamCutter:") + codec;
}

} // namespace Core
