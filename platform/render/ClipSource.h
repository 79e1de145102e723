#pragma once

#include "platform/render/AudioFormat.h"
#include "platform/render/AudioSource.h"
#include "platform/render/ClipSettings.h"
#include "platform/render/VideoSource.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Velmor::AV {
struct MediaInfo;
}

namespace Velmor::Render {

class Stop;

// One media file rendered as it is: its best video stream and its best audio stream, each a
// source of its own over one demuxer, for the part of the file the settings ask for.
//
// The constructor opens the file and settles where the clip starts: it seeks, and decodes up to
// the first picture of the range, whose time is where the sound starts too. So neither source
// waits for the other; each may be pulled on a thread of its own, and each must be pulled to its
// end (or finished), since the packets of one wait in a bounded queue for the other.
//
// Threads and lifetimes: make it, and take its sources, on one thread; then each source on one
// thread at a time. The sources live as long as the clip source. `stop` must outlive it: it ends
// a read that blocks (a pipe that never delivers) and the decoding.
class ClipSource {
public:
    // Throws MediaError: "Can not open media file: <path>: <reason>", "Can not export <path>: it
    // has no video" (with requireVideo), "Range <from>:<to> ms is outside <path> (<duration>
    // ms)", "Can not export <path>: no video frame in the range", the decoders' failures; and
    // Cancelled when the render stops meanwhile.
    ClipSource(const ClipSettings& settings, const Stop& stop);
    ClipSource(const ClipSource&) = delete;
    ClipSource& operator=(const ClipSource&) = delete;
    ~ClipSource();

    const AV::MediaInfo& info() const;
    // What the clip lasts as the file says: the range's length, else the file's duration.
    std::int64_t durationMs() const;

    // The pictures; null for an input without video.
    VideoSource* video();
    // The input's sound as its stream says it is (rate and channels; the sample format -1, the
    // decoder's); none without sound, or when the settings don't ask for it.
    std::optional<AudioFormat> inputAudio() const;
    // The sound converted to `format`; null without sound. Made at the first call, whose
    // format counts; take it before the pictures are pulled.
    AudioSource* audio(const AudioFormat& format);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
