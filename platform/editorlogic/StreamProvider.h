#pragma once

#include <QString>
#include <memory>

namespace Media {

class DecodedVideoStream;
class ICreatorAudioDecoder;
class ICreatorAudioStreamCutter;
class ICreatorVideoDecoder;
class ICreatorVideoStreamCutter;

// Hands out decoded streams of media files and keeps each, with its opened demuxer and
// decoder, in a cache for cacheLifetime milliseconds after its last use, so that many frames of
// one file cost one opening; 0 or less caches nothing. A stream handed out is its holder's
// alone until the holder lets it go. The creators are borrowed and must outlive the provider.
class StreamProvider {
public:
    // Records "Media::StreamProvider::StreamProvider(<cacheLifetime>)".
    StreamProvider(ICreatorVideoDecoder* videoDecoders, ICreatorAudioDecoder* audioDecoders,
                   ICreatorVideoStreamCutter* videoCutters, ICreatorAudioStreamCutter* audioCutters,
                   int cacheLifetime);
    StreamProvider(const StreamProvider&) = delete;
    StreamProvider& operator=(const StreamProvider&) = delete;
    ~StreamProvider();

    // The provider constructed last that is still alive; null when there is none.
    static StreamProvider* instance();

    int cacheLifetime() const;
    // The file's best video stream, from the cache when it holds one that nobody uses, else
    // newly opened through the creators. Throws what opening throws, and
    // Velmor::AV::MediaError "No video stream in <path>" for a file without one. Letting the
    // result go puts the stream back in the cache; a stream outliving the provider is closed.
    std::shared_ptr<DecodedVideoStream> videoStream(const QString& path);
    // How many streams the provider has opened, and how many the cache holds now.
    int openedStreams() const;
    int cachedStreams() const;

private:
    class Private;
    std::shared_ptr<Private> d;
};

} // namespace Media
