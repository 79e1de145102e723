#include "platform/editorlogic/StreamProcessorFactory.h"

#include "platform/editorlogic/VideoStreamCutter.h"
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

std::unique_ptr<Media::VideoStreamCutter>
StreamProcessorFactory::createVideoStreamCutter(Velmor::AV::Demuxer& demuxer,
                                                Velmor::AV::Decoder& decoder) const {
    return std::make_unique<Media::VideoStreamCutter>(demuxer, decoder);
}

QString StreamProcessorFactory::audioStreamCutterFor(const QString& codec) const {
    return QStringLiteral("AudioStreamCutter:") + codec;
}

} // namespace Core
