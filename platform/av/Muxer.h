#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct AVFormatContext;

namespace Velmor::AV {

class Demuxer;
class Encoder;
class Packet;

// Writes encoded streams into a container file, in the order the libraries rely on: made before
// the encoders open (they ask wantsGlobalHeader()), streams added from the open encoders, the
// header written, packets written, the trailer written. MP4 and MOV get their index at the
// front, so that the file plays while it downloads. The file is an open descriptor, never a
// path: the muxer opens nothing by name (DescriptorIo). One thread at a time.
class Muxer {
public:
    // What was written into one stream so far.
    struct Written {
        std::int64_t packets = 0;
        std::int64_t bytes = 0;
        // The end of the stream's last packet, from timestamp 0.
        std::int64_t durationMs = 0;
    };

    // `descriptor`: the file to write, open for reading too (MP4's index pass reads back what was
    // written); it stays the caller's and outlives the muxer. `name` names the output in
    // failures. `format` is the container's short name ("mp4"). Nothing is written yet. Throws
    // MediaError "Can not write <name>: <reason>".
    Muxer(int descriptor, const std::string& name, const std::string& format);
    Muxer(const Muxer&) = delete;
    Muxer& operator=(const Muxer&) = delete;
    // Leaves the file as it is, complete or not; what to do with an incomplete one is the
    // caller's choice.
    ~Muxer();

    const std::string& name() const;
    AVFormatContext* context() const;
    // Whether encoders must put their headers out of band (AV_CODEC_FLAG_GLOBAL_HEADER).
    bool wantsGlobalHeader() const;
    // A stream for the open encoder's packets; its index.
    int addStream(const Encoder& encoder);
    // A stream for packets copied from stream `index` of `source`, as they are: the same codec
    // and headers, timestamps in the source stream's time base.
    int addStream(const Demuxer& source, int index);
    // Writes the header. Throws MediaError "Can not write <name>: <reason>".
    void writeHeader();
    // Writes a packet of the encoder of `stream`, its timestamps in the encoder's time base,
    // interleaved with the other streams. The packet is empty afterwards.
    void write(int stream, Packet& packet);
    // Writes the trailer and what waits in the buffer, the result of each checked.
    void finish();

    Written written(int stream) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
