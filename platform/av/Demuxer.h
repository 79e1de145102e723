#pragma once

#include "platform/av/MediaInfo.h"
#include "platform/av/Rational.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

struct AVFormatContext;
struct AVStream;

namespace Velmor::AV {

class Packet;

// Reads a media file: the description of its streams, then its packets in file order.
class Demuxer {
public:
    // Tells a blocking read to give up: asked again and again while a read waits.
    using Interrupted = std::function<bool()>;

    // Opens the file and parses its stream info. A FIFO is read without blocking, so that
    // `interrupted` ends a read that waits for data that never comes. Throws MediaError
    // "Can not open media file: <path>: <reason>", the reason in the library's own words.
    explicit Demuxer(const std::string& path, Interrupted interrupted = {});
    Demuxer(const Demuxer&) = delete;
    Demuxer& operator=(const Demuxer&) = delete;
    ~Demuxer();

    const std::string& path() const;
    const MediaInfo& info() const;
    AVFormatContext* context() const;
    AVStream* stream(int index) const;
    // The stream's time base: the unit of its packets' and frames' timestamps.
    Rational timeBase(int index) const;
    // The stream's average frame rate, else its base rate; 0/1 when the file says neither.
    Rational frameRate(int index) const;
    // The file's first timestamp in microseconds; 0 when unknown.
    std::int64_t startTime() const;
    // Where the file's timeline begins, in microseconds of its timestamps: the time its
    // duration counts from, and so every time a user gives. MP4, MOV and Matroska count from 0
    // (a first timestamp after it is a delay at the head of the file); the others from their
    // first timestamp (MPEG-TS's clock starts anywhere).
    std::int64_t origin() const;
    // The stream's first timestamp in its time base; AV_NOPTS_VALUE when unknown.
    std::int64_t streamStartTime(int index) const;
    // The timestamp of the last key frame of the stream at or before the timestamp, both in
    // the stream's time base, as far as the file's index knows it; AV_NOPTS_VALUE when the
    // index has none there.
    std::int64_t indexedKeyFrameAtOrBefore(int index, std::int64_t timestamp) const;
    // The stream the library takes for the best of the type ("video", "audio"); -1 for none.
    // Cover art is no video.
    int bestStream(const std::string& type) const;

    // Reads only the packets of one stream from now on: the others are skipped, where the
    // container lets the library pass over their bytes without reading them.
    void readOnly(int streamIndex);

    // The next packet of any stream; false at the end of the file. Throws MediaError
    // "Can not read media file: <path>: <reason>"; an interrupted read throws it too.
    bool read(Packet& packet);
    // Moves to the last key frame of the stream at or before the timestamp, given in the
    // stream's time base. Throws MediaError "Can not seek in media file: <path>: <reason>".
    void seek(int streamIndex, std::int64_t timestamp);
    // False for a pipe, which is read forward only.
    bool canSeek() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
