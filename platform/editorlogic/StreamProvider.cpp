#include "platform/editorlogic/StreamProvider.h"

#include "platform/editorlogic/ICreatorAudioDecoder.h"
#include "platform/editorlogic/ICreatorAudioStreamCutter.h"
#include "platform/editorlogic/ICreatorVideoDecoder.h"
#include "platform/editorlogic/ICreatorVideoStreamCutter.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Media {

StreamProvider::StreamProvider(ICreatorVideoDecoder* videoDecoders,
                               ICreatorAudioDecoder* audioDecoders,
                               ICreatorVideoStreamCutter* videoCutters,
                               ICreatorAudioStreamCutter* audioCutters, int cacheLifetime)
    : m_videoDecoders(videoDecoders)
    , m_audioDecoders(audioDecoders)
    , m_videoCutters(videoCutters)
    , m_audioCutters(audioCutters)
    , m_cacheLifetime(cacheLifetime) {
    Velmor::Testing::Probe::hit("Media::StreamProvider::StreamProvider");
    Velmor::Testing::CallLog::record("Media::StreamProvider::StreamProvider("
                                     + std::to_string(cacheLifetime) + ")");
}

StreamProvider::~StreamProvider() {
    Velmor::Testing::CallLog::record("Media::StreamProvider::~StreamProvider");
}

int StreamProvider::cacheLifetime() const {
    return m_cacheLifetime;
}

QString StreamProvider::videoChainFor(const QString& codec) const {
    return m_videoCutters->videoStreamCutterFor(codec) + QStringLiteral(" -> ")
           + m_videoDecoders->videoDecoderFor(codec);
}

QString StreamProvider::audioChainFor(const QString& codec) const {
    return m_audioCutters->audioStreamCutterFor(codec) + QStringLiteral(" -> ")
           + m_audioDecoders->audioDecoderFor(codec);
}

} // namespace Media
