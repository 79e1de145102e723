#include "platform/editorlogic/ExecutorFactory.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include "platform/engine/CoreManager.h"

namespace Core {

ExecutorFactory::ExecutorFactory() {
    Velmor::Testing::Probe::hit("Core::ExecutorFactory::ExecutorFactory");
    Velmor::Testing::CallLog::record("Core::ExecutorFactory::ExecutorFactory");
}

ExecutorFactory::~ExecutorFactory() {
    Velmor::Testing::CallLog::record("Core::ExecutorFactory::~ExecutorFactory");
}

namespace {

void requireDecoders() {
    Velmor::Core::CoreManager::Instance().RequirePlugin("DecodersFF", "read media");
}

} // namespace

std::unique_ptr<Velmor::AV::Demuxer>
ExecutorFactory::createFileParser(const QString& path,
                                  Velmor::AV::Demuxer::Interrupted interrupted) const {
    requireDecoders();
    return std::make_unique<Velmor::AV::Demuxer>(path.toStdString(), std::move(interrupted));
}

std::unique_ptr<Velmor::AV::Decoder>
ExecutorFactory::createVideoDecoder(const Velmor::AV::Demuxer& demuxer, int streamIndex) const {
    requireDecoders();
    return std::make_unique<Velmor::AV::Decoder>(demuxer, streamIndex);
}

std::unique_ptr<Velmor::AV::Decoder>
ExecutorFactory::createAudioDecoder(const Velmor::AV::Demuxer& demuxer, int streamIndex) const {
    requireDecoders();
    return std::make_unique<Velmor::AV::Decoder>(demuxer, streamIndex);
}

} // namespace Core
