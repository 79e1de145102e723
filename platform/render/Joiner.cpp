#include "platform/render/Joiner.h"

#include "platform/av/Demuxer.h"
#include "platform/av/MediaError.h"
#include "platform/av/MediaInfo.h"
#include "platform/av/Muxer.h"
#include "platform/av/Packet.h"
#include "platform/av/Rational.h"
#include "platform/render/WrittenBytes.h"

#include <algorithm>
#include <optional>

namespace Velmor::Render {
namespace {

constexpr AV::Rational microseconds{1, 1000000};

// The packets of one stream of a row of files, one file after the other, each moved to its
// start; the next one waits in `packet` until it is written.
class Cursor {
public:
    Cursor(std::vector<JoinedPart> parts, const std::string& type, const std::string& joined)
        : parts(std::move(parts))
        , type(type)
        , joined(joined) {}

    // The first file, whose stream the output's is made like.
    AV::Demuxer& first() {
        open();
        return *demuxer;
    }
    int stream() const { return index; }
    const AV::StreamInfo& info() const { return demuxer->info().streams.at(index); }

    // Whether a packet waits; reads the next one, from the next file at the end of one.
    bool ready() {
        while (!waiting) {
            if (!demuxer && !open())
                return false;
            waiting = demuxer->read(packet);
            if (waiting) {
                packet.shift(shift);
                return true;
            }
            demuxer.reset();
            ++next;
        }
        return true;
    }
    // When the waiting packet is decoded, in microseconds.
    std::int64_t time() const {
        const std::int64_t at = packet.decodingTimestamp() != AV::noTimestamp
                                    ? packet.decodingTimestamp()
                                    : packet.timestamp();
        return at == AV::noTimestamp ? 0 : AV::rescale(at, timeBase, microseconds);
    }
    AV::Packet& take() {
        waiting = false;
        return packet;
    }

private:
    const std::vector<JoinedPart> parts;
    const std::string type;
    const std::string joined;
    std::size_t next = 0;
    std::unique_ptr<AV::Demuxer> demuxer;
    int index = -1;
    AV::Rational timeBase{1, 1};
    AV::Rational firstTimeBase{0, 1};
    std::int64_t shift = 0;
    AV::Packet packet;
    bool waiting = false;

    bool open() {
        if (next >= parts.size())
            return false;
        const JoinedPart& part = parts[next];
        demuxer = std::make_unique<AV::Demuxer>(part.path);
        index = demuxer->bestStream(type);
        if (index < 0)
            throw AV::MediaError("Can not join " + joined + ": " + part.path + " has no " + type);
        demuxer->readOnly(index);
        timeBase = demuxer->timeBase(index);
        if (next == 0)
            firstTimeBase = timeBase;
        // The output's stream counts in the first file's time base.
        if (timeBase != firstTimeBase)
            throw AV::MediaError("Can not join " + joined + ": " + part.path
                                 + " has another time base");
        shift = AV::rescale(part.startUs, microseconds, timeBase);
        return true;
    }
};

WrittenStream writtenStream(const AV::Muxer& muxer, int stream, const AV::StreamInfo& info) {
    const AV::Muxer::Written written = muxer.written(stream);
    WrittenStream result;
    result.codec = info.codec;
    result.packets = written.packets;
    result.bytes = written.bytes;
    result.durationMs = written.durationMs;
    result.bitRate = bitRate(written.bytes, written.durationMs);
    result.width = info.width;
    result.height = info.height;
    result.sampleRate = info.sampleRate;
    result.channels = info.channels;
    return result;
}

} // namespace

class Joiner::Private {
public:
    Private(int descriptor, const std::string& name, const std::string& container)
        : descriptor(descriptor)
        , name(name)
        , muxer(descriptor, name, container) {}

    const int descriptor;
    const std::string name;
    AV::Muxer muxer;

    // Writes whichever stream's packet is decoded first, until both have ended.
    void interleave(Cursor& video, Cursor* audio, int videoStream, int audioStream) {
        for (;;) {
            const bool hasVideo = video.ready();
            const bool hasAudio = audio && audio->ready();
            if (!hasVideo && !hasAudio)
                return;
            if (hasVideo && (!hasAudio || video.time() <= audio->time()))
                muxer.write(videoStream, video.take());
            else
                muxer.write(audioStream, audio->take());
        }
    }
};

Joiner::Joiner(int descriptor, const std::string& name, const std::string& container)
    : d(std::make_unique<Private>(descriptor, name, container)) {}

Joiner::~Joiner() = default;

WriterResult Joiner::join(const std::vector<JoinedPart>& parts, const std::string& audio) {
    Cursor video(parts, "video", d->name);
    const AV::Demuxer& firstPart = video.first();
    const int videoStream = d->muxer.addStream(firstPart, video.stream());
    std::unique_ptr<Cursor> sound;
    int audioStream = -1;
    if (!audio.empty()) {
        sound = std::make_unique<Cursor>(std::vector<JoinedPart>{{audio, 0}}, "audio", d->name);
        const AV::Demuxer& sounds = sound->first();
        audioStream = d->muxer.addStream(sounds, sound->stream());
    }
    d->muxer.writeHeader();
    const AV::StreamInfo videoInfo = video.info();
    const std::optional<AV::StreamInfo> audioInfo =
        sound ? std::optional<AV::StreamInfo>(sound->info()) : std::nullopt;
    d->interleave(video, sound.get(), videoStream, audioStream);
    d->muxer.finish();

    WriterResult result;
    result.streams.push_back(writtenStream(d->muxer, videoStream, videoInfo));
    if (audioInfo)
        result.streams.push_back(writtenStream(d->muxer, audioStream, *audioInfo));
    for (const WrittenStream& stream : result.streams)
        result.durationMs = std::max(result.durationMs, stream.durationMs);
    result.bytes = writtenBytes(d->descriptor, d->name);
    return result;
}

} // namespace Velmor::Render
