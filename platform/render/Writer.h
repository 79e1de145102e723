#pragma once

#include "platform/render/AudioEncoding.h"
#include "platform/render/AudioFormat.h"
#include "platform/render/VideoEncoding.h"
#include "platform/render/VideoFormat.h"
#include "platform/render/WriterResult.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Velmor::Render {

class FrameSink;

// The end of a render: one container file, a sink per stream that owns its encoder (and, for
// audio, the FIFO that re-chunks samples for it), the muxer they share, and what was written.
//
// Each stream's sink is written on a thread of its own (the runner's connection), so no stream
// waits for another: the header goes out when every encoder has opened (each at its first frame),
// and the muxer interleaves the packets. The file is an open descriptor, never opened by name:
// the caller's Velmor::OutputFile puts it in place once the writer has finished.
//
// Threads and lifetimes: add the streams and set onEncoded on one thread before the sinks are
// written; finish() after every sink was closed, on any one thread. The sinks live as long as
// the writer. A writer that is destroyed unfinished leaves its file incomplete, for the caller
// to remove.
class Writer {
public:
    // Called on the first stream's thread after each of its packets: the packets so far and the
    // furthest end in ms, for a progress meter.
    using Encoded = std::function<void(std::int64_t packets, std::int64_t endMs)>;

    // `descriptor`: the file to write, open for reading too, and the caller's; `name` names the
    // output in failures; `container`: the muxer's short name ("mp4"). Throws MediaError "Can
    // not write <name>: <reason>".
    Writer(int descriptor, const std::string& name, const std::string& container);
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer();

    // The format an audio source is to give a stream of `encoding`, for sound offered at a rate
    // and channels: the encoder's sample format, the rate it has nearest, the channels. Throws
    // MediaError "Can not encode with <encoder>: Encoder not found".
    static AudioFormat audioFormat(const AudioEncoding& encoding, const AudioFormat& offered);

    // A stream, in the file's order, and the sink its frames go to. Throws std::logic_error
    // "Can not write <name>: a stream added after the header" once a sink was written.
    FrameSink& addVideo(const VideoFormat& format, const VideoEncoding& encoding);
    FrameSink& addAudio(const AudioFormat& format, const AudioEncoding& encoding);
    // Follows the packets of the first stream added.
    void onEncoded(Encoded encoded);

    // Writes the trailer and what waits in the buffer; what was written. Throws MediaError "Can
    // not write <name>: <reason>".
    WriterResult finish();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
