#include "platform/render/ClipAudio.h"

#include "platform/av/Decoder.h"
#include "platform/av/Frame.h"
#include "platform/av/Packet.h"
#include "platform/av/Pump.h"
#include "platform/av/Rational.h"
#include "platform/av/Resampler.h"
#include "platform/av/Samples.h"
#include "platform/render/AudioSpan.h"
#include "platform/render/Cancelled.h"
#include "platform/render/ReadyFrames.h"
#include "platform/render/SharedDemuxer.h"
#include "platform/render/Stop.h"

#include <limits>

namespace Velmor::Render {
namespace {

constexpr AV::Rational microseconds{1, 1000000};
constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();

AudioSpan samplesOf(std::int64_t begin, std::int64_t end, int sampleRate) {
    const AV::Rational samples{1, sampleRate};
    return {AV::rescale(begin, microseconds, samples),
            end == endless ? endless : AV::rescale(end, microseconds, samples)};
}

} // namespace

class ClipAudio::Private {
public:
    Private(std::unique_ptr<AV::Decoder> decoder, AV::Rational timeBase, SharedDemuxer& packets,
            const AudioFormat& format, std::int64_t begin, std::int64_t end, const Stop& stop)
        : decoder(std::move(decoder))
        , timeBase(timeBase)
        , packets(packets)
        , stop(stop)
        , format(format)
        , resampler(format.sampleFormat, format.sampleRate, format.channels)
        , span(samplesOf(begin, end, format.sampleRate)) {}

    std::unique_ptr<AV::Decoder> decoder;
    const AV::Rational timeBase;
    SharedDemuxer& packets;
    const Stop& stop;
    const AudioFormat format;
    AV::Resampler resampler;
    const AudioSpan span;
    AV::Packet packet;
    AV::Frame decoded;
    // Cut blocks not yet handed out; ended past the span, or drained at the end of the file.
    ReadyFrames ready;
    // The output time of the next block.
    std::int64_t nextTime = AV::noTimestamp;

    void keep(const AV::Frame& block) {
        const AudioSpan::Cut cut = span.cut(block.timestamp(), block.samples());
        if (cut.past) {
            end();
            return;
        }
        if (cut.keep == 0)
            return;
        AV::Frame kept =
            AV::sliceSamples(block, static_cast<int>(cut.skip), static_cast<int>(cut.keep));
        // Blocks follow each other: a gap in the input's timestamps is not the output's.
        if (nextTime == AV::noTimestamp)
            nextTime = cut.time;
        kept.setTimestamp(nextTime);
        nextTime += cut.keep;
        ready.add(std::move(kept));
    }

    void end() {
        ready.end();
        packets.finish(decoder->streamIndex());
    }

    // Decodes one more packet, or drains the decoder and the resampler at the end of the file.
    void feed() {
        if (stop.requested())
            throw Cancelled();
        auto take = [this](AV::Frame& samples) {
            keep(resampler.convert(samples, timeBase));
            return !ready.hasEnded();
        };
        if (packets.next(decoder->streamIndex(), packet)) {
            AV::pump(*decoder, &packet, decoded, take);
            return;
        }
        AV::pump(*decoder, static_cast<const AV::Packet*>(nullptr), decoded, take);
        if (!ready.hasEnded())
            keep(resampler.drain());
        end();
    }
};

ClipAudio::ClipAudio(std::unique_ptr<AV::Decoder> decoder, AV::Rational timeBase,
                     SharedDemuxer& packets, const AudioFormat& format, std::int64_t begin,
                     std::int64_t end, const Stop& stop)
    : d(std::make_unique<Private>(std::move(decoder), timeBase, packets, format, begin, end,
                                  stop)) {}

ClipAudio::~ClipAudio() = default;

AudioFormat ClipAudio::format() const {
    return d->format;
}

bool ClipAudio::next(AV::Frame& frame) {
    return d->ready.next(frame, [this] { d->feed(); });
}

void ClipAudio::finish() {
    d->ready.clear();
    d->end();
}

} // namespace Velmor::Render
