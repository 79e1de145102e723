#pragma once

#include <cstdint>
#include <memory>

namespace Velmor::AV {
class Decoder;
class Demuxer;
class Frame;
} // namespace Velmor::AV

namespace Media {

// Puts a decoded video stream on the times asked for. A time ahead of the stream, before its
// next key frame, is reached by decoding on; any other time by a seek to the key frame at or
// before it. Times are milliseconds from the start of the file. The demuxer and the decoder
// are borrowed and must outlive the cutter; one thread at a time.
class VideoStreamCutter {
public:
    VideoStreamCutter(Velmor::AV::Demuxer& demuxer, Velmor::AV::Decoder& decoder);
    VideoStreamCutter(const VideoStreamCutter&) = delete;
    VideoStreamCutter& operator=(const VideoStreamCutter&) = delete;
    ~VideoStreamCutter();

    // The frame on screen at the time: the last frame whose display time is at or before it, or
    // the first frame for a time before that. Valid until the next call. Throws
    // Velmor::AV::MediaError "Time <t> ms is past the end of <path> (<duration> ms)" for a time
    // after the end of a file that tells its duration, and "No frame in <path>" for a stream
    // that decodes to nothing.
    const Velmor::AV::Frame& frameAt(std::int64_t milliseconds);
    // The display time of the frame frameAt gave last, in milliseconds from the file's start.
    std::int64_t frameMilliseconds() const;
    // How many times the cutter has sought, for those who measure what a cache spares.
    int seeks() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Media
