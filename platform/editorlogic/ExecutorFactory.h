#pragma once

#include "platform/editorlogic/ICreatorAudioDecoder.h"
#include "platform/editorlogic/ICreatorFileParser.h"
#include "platform/editorlogic/ICreatorVideoDecoder.h"

namespace Core {

// Creates the file parsers and the video and audio decoders of the engine, from the media
// libraries that the engine's "DecodersFF" plug-in gives: with that plug-in disabled each
// creation throws Velmor::Core::PluginError "Can not read media: the plug-in DecodersFF is
// disabled".
class ExecutorFactory : public Media::ICreatorFileParser,
                        public Media::ICreatorVideoDecoder,
                        public Media::ICreatorAudioDecoder {
public:
    ExecutorFactory();
    ~ExecutorFactory() override;

    std::unique_ptr<Velmor::AV::Demuxer>
    createFileParser(const QString& path,
                     Velmor::AV::Demuxer::Interrupted interrupted) const override;
    std::unique_ptr<Velmor::AV::Decoder> createVideoDecoder(const Velmor::AV::Demuxer& demuxer,
                                                            int streamIndex) const override;
    std::unique_ptr<Velmor::AV::Decoder> createAudioDecoder(const Velmor::AV::Demuxer& demuxer,
                                                            int streamIndex) const override;
};

} // namespace Core
