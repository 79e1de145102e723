#pragma once

#include "platform/render/AudioSource.h"

#include <cstdint>
#include <memory>

namespace Velmor::AV {
class Decoder;
struct Rational;
} // namespace Velmor::AV

namespace Velmor::Render {

class SharedDemuxer;
class Stop;

// The sound of one audio stream of a clip: decoded from the packets its demuxer shares,
// converted to `format`, cut to the sample to the span [begin, end) (in microseconds of the
// file's timestamps; begin is output time 0), in blocks that follow each other without gaps.
//
// One thread at a time; the shared demuxer must outlive it. Once past the span it stops decoding
// and finishes its stream of the shared demuxer.
class ClipAudio : public AudioSource {
public:
    // `decoder` decodes the stream, whose packets are timed in `timeBase`. Throws MediaError
    // "Can not resample to <rate> Hz: <reason>" for a format libswresample refuses.
    ClipAudio(std::unique_ptr<AV::Decoder> decoder, AV::Rational timeBase, SharedDemuxer& packets,
              const AudioFormat& format, std::int64_t begin, std::int64_t end, const Stop& stop);
    ~ClipAudio() override;

    AudioFormat format() const override;
    bool next(AV::Frame& frame) override;
    void finish() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
