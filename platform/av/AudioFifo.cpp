#include "platform/av/AudioFifo.h"

#include "platform/av/MediaError.h"

#include <algorithm>
#include <vector>

extern "C" {
#include <libavutil/audio_fifo.h>
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

namespace Velmor::AV {
namespace {

struct FreeFifo {
    void operator()(AVAudioFifo* fifo) const { av_audio_fifo_free(fifo); }
};

const std::string failure = "Can not buffer audio";

} // namespace

class AudioFifo::Private {
public:
    AVSampleFormat format;
    int sampleRate;
    int channels;
    int frameSize;
    std::unique_ptr<AVAudioFifo, FreeFifo> fifo;
    std::int64_t samplesRead = 0;
};

AudioFifo::AudioFifo(int format, int sampleRate, int channels, int frameSize)
    : d(std::make_unique<Private>()) {
    d->format = static_cast<AVSampleFormat>(format);
    d->sampleRate = sampleRate;
    d->channels = channels;
    d->frameSize = frameSize;
    d->fifo.reset(av_audio_fifo_alloc(d->format, channels, std::max(frameSize, 1) * 2));
    if (!d->fifo)
        throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
}

AudioFifo::~AudioFifo() = default;

void AudioFifo::write(const Frame& block, int skip, int count) {
    const int available = block.samples() - skip;
    if (count < 0 || count > available)
        count = available;
    if (count <= 0 || skip < 0)
        return;
    if (block.format() != d->format || block->ch_layout.nb_channels != d->channels)
        throw MediaError(failure + ": " + errorText(AVERROR(EINVAL)));
    const int bytes = av_get_bytes_per_sample(d->format);
    const bool planar = av_sample_fmt_is_planar(d->format);
    std::vector<void*> planes(planar ? d->channels : 1);
    for (std::size_t plane = 0; plane < planes.size(); ++plane)
        planes[plane] = block->extended_data[plane] + skip * bytes * (planar ? 1 : d->channels);
    const int written = av_audio_fifo_write(d->fifo.get(), planes.data(), count);
    if (written < count)
        throw MediaError(failure + ": " + errorText(written < 0 ? written : AVERROR(ENOMEM)));
}

int AudioFifo::size() const {
    return av_audio_fifo_size(d->fifo.get());
}

bool AudioFifo::read(Frame& frame, bool flush) {
    const int held = size();
    const int wanted = d->frameSize > 0 ? d->frameSize : held;
    if (held == 0 || (held < wanted && !flush))
        return false;
    const int samples = std::min(held, wanted);
    frame.reset();
    frame->format = d->format;
    frame->sample_rate = d->sampleRate;
    av_channel_layout_default(&frame->ch_layout, d->channels);
    frame->nb_samples = samples;
    check(av_frame_get_buffer(frame.get(), 0), failure);
    const int read =
        av_audio_fifo_read(d->fifo.get(), reinterpret_cast<void**>(frame->data), samples);
    check(read, failure);
    frame.setTimestamp(d->samplesRead);
    d->samplesRead += samples;
    return true;
}

} // namespace Velmor::AV
