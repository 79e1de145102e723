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

    QString videoStreamCutterFor(const QString& codec) const override;
    QString audioStreamCutterFor(const QString& codec) const override;
};

} // namespace Core
