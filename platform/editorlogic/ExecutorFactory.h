#pragma once

#include "platform/editorlogic/ICreatorAudioDecoder.h"
#include "platform/editorlogic/ICreatorFileParser.h"
#include "platform/editorlogic/ICreatorVideoDecoder.h"

namespace Core {

// Creates the file parsers and the video and audio decoders of the engine.
class ExecutorFactory : public Media::ICreatorFileParser,
                        public Media::ICreatorVideoDecoder,
                        public Media::ICreatorAudioDecoder {
public:
    ExecutorFactory();
    ~ExecutorFactory() override;

    QString fileParserFor(const QString& path) const override;
    QString videoDecoderFor(const QString& codec) const override;
    QString audioDecoderFor(const QString& codec) const override;
};

} // namespace Core
