#pragma once

#include <QString>

namespace Media {

class ICreatorAudioDecoder;
class ICreatorAudioStreamCutter;
class ICreatorVideoDecoder;
class ICreatorVideoStreamCutter;

// Hands out decoded streams and keeps each in a cache for cacheLifetime milliseconds after
// its last use. The creators are borrowed and must outlive the provider.
class StreamProvider {
public:
    // Records "Media::StreamProvider::StreamProvider(<cacheLifetime>)".
    StreamProvider(ICreatorVideoDecoder* videoDecoders, ICreatorAudioDecoder* audioDecoders,
                   ICreatorVideoStreamCutter* videoCutters, ICreatorAudioStreamCutter* audioCutters,
                   int cacheLifetime);
    StreamProvider(const StreamProvider&) = delete;
    StreamProvider& operator=(const StreamProvider&) = delete;
    ~StreamProvider();

    int cacheLifetime() const;
    // Describes the processing chain for a video or audio stream of the given codec.
    QString videoChainFor(const QString& codec) const;
    QString audioChainFor(const QString& codec) const;

private:
    ICreatorVideoDecoder* m_videoDecoders;
    ICreatorAudioDecoder* m_audioDecoders;
    ICreatorVideoStreamCutter* m_videoCutters;
    ICreatorAudioStreamCutter* m_audioCutters;
    int m_cacheLifetime;
};

} // namespace Media
