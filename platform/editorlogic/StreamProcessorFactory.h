#pragma once

#include "platform/editorlogic/ICreatorAudioStreamCutter.h"
#include "platform/editorlogic/ICreatorVideoStreamCutter.h"

namespace Core {

// Creates the cutters of video and audio streams.
class StreamProcessorFactory : public Media::ICreatorVideoStreamCutter,
                               public Media::ICreatorAudioStreamCutter {
public:
    StreamProcessorFactory();
    ~StreamProcessorFactory() override;

    std::unique_ptr<Media::VideoStreamCutter>
    createVideoStreamCutter(Velmor::AV::Demuxer& demuxer,
                            Velmor::AV::Decoder& decoder) const override;
    QString audioStreamCutterFor(const QString& codec) const override;
};

} // namespace Core
