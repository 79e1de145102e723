#include "platform/mix/FileSoundReaders.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Resampler.h"
#include "platform/mix/SampleTimes.h"

#include <algorithm>
#include <optional>

namespace Mixing {
namespace {

using Velmor::AV::AudioShape;
using Velmor::AV::Frame;

// Decoding starts this long before the start time: enough for the codecs that need the blocks
// before (MP3's bit reservoir, AAC's and Vorbis's overlap, Opus's pre-roll) to give the same
// samples at the start time as a decode from the file's beginning.
constexpr std::int64_t prerollMs = 500;

void silence(Frame* block, int offset, int count) {
    if (!block)
        return;
    for (int channel = 0; channel < Velmor::AV::shapeOf(*block).channels; ++channel)
        std::fill_n(Velmor::AV::channelOf(*block, channel) + offset, count, 0.0f);
}

class FileSoundReader : public ISoundReader {
public:
    FileSoundReader(const QString& file, std::int64_t fromMs, AudioShape shape)
        : demuxer(file.toStdString())
        , stream(demuxer.bestStream("audio"))
        , resampler(shape.sampleFormat, shape.sampleRate, shape.channels)
        , rate(shape.sampleRate)
        , start(SampleTimes(shape.sampleRate).sampleAt(fromMs)) {
        if (stream < 0)
            return;
        demuxer.readOnly(stream);
        decoder.emplace(demuxer, stream, 1);
        fileStart = Velmor::AV::rescale(demuxer.startTime(), microseconds, {1, rate});
        if (fromMs > prerollMs)
            seekTo(fromMs - prerollMs);
    }

    void read(Frame& block, int offset, int count) override { take(&block, offset, count); }

    void skip(std::int64_t count) override {
        while (count > 0) {
            const int part = static_cast<int>(std::min<std::int64_t>(count, 1 << 20));
            take(nullptr, 0, part);
            count -= part;
        }
    }

private:
    static constexpr Velmor::AV::Rational microseconds{1, 1000000};

    // Times count from the file's start, which the stream's timestamps need not.
    void seekTo(std::int64_t milliseconds) {
        const Velmor::AV::Rational unit = demuxer.timeBase(stream);
        demuxer.seek(stream, Velmor::AV::rescale(demuxer.startTime(), microseconds, unit)
                                 + Velmor::AV::rescale(milliseconds, {1, 1000}, unit));
    }

    // Gives the next `count` samples, into the block when there is one.
    void take(Frame* block, int offset, int count) {
        while (count > 0) {
            if (gap > 0) {
                const int part = static_cast<int>(std::min<std::int64_t>(count, gap));
                silence(block, offset, part);
                gap -= part;
                offset += part;
                count -= part;
                continue;
            }
            if (used == pending.samples()) {
                if (!decodeMore()) {
                    silence(block, offset, count);
                    return;
                }
                continue;
            }
            const int part = std::min(count, pending.samples() - used);
            for (int channel = 0; block && channel < Velmor::AV::shapeOf(*block).channels;
                 ++channel)
                std::copy_n(Velmor::AV::channelOf(pending, channel) + used, part,
                            Velmor::AV::channelOf(*block, channel) + offset);
            used += part;
            offset += part;
            count -= part;
        }
    }

    // Converts the next decoded block into `pending`; false at the end of the sound.
    bool decodeMore() {
        while (!ended) {
            Frame converted = convertNext();
            if (converted.samples() == 0)
                continue;
            pending = std::move(converted);
            used = 0;
            if (aligned || align())
                return true;
            used = pending.samples();
        }
        return false;
    }

    Frame convertNext() {
        Frame decoded;
        if (decoder && decoder->decodeNext(demuxer, decoded))
            return resampler.convert(decoded, demuxer.timeBase(stream));
        ended = true;
        return decoder ? resampler.drain() : Frame();
    }

    // Places the first blocks by their time: drops what comes before the start, and puts
    // silence before a sound that starts after it. False when the whole block comes before.
    bool align() {
        const std::int64_t at = pending.timestamp() - fileStart;
        if (at + pending.samples() <= start)
            return false;
        used = static_cast<int>(std::max<std::int64_t>(start - at, 0));
        gap = std::max<std::int64_t>(at - start, 0);
        aligned = true;
        return true;
    }

    Velmor::AV::Demuxer demuxer;
    const int stream;
    std::optional<Velmor::AV::Decoder> decoder;
    Velmor::AV::Resampler resampler;
    const int rate;
    // Where the file starts, and the start time, in samples of the mix's rate.
    std::int64_t fileStart = 0;
    const std::int64_t start;
    // Converted samples, given up to `used`.
    Frame pending;
    int used = 0;
    std::int64_t gap = 0;
    bool aligned = false;
    bool ended = false;
};

} // namespace

std::unique_ptr<ISoundReader> FileSoundReaders::open(const QString& file, std::int64_t fromMs,
                                                     AudioShape shape) {
    return std::make_unique<FileSoundReader>(file, fromMs, shape);
}

} // namespace Mixing
