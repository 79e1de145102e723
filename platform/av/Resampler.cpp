#include "platform/av/Resampler.h"

#include "platform/av/MediaError.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/mathematics.h>
#include <libswresample/swresample.h>
}

namespace Velmor::AV {
namespace {

struct FreeSwr {
    void operator()(SwrContext* context) const { swr_free(&context); }
};

struct Layout {
    AVChannelLayout value{};
    Layout() = default;
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;
    ~Layout() { av_channel_layout_uninit(&value); }
};

} // namespace

class Resampler::Private {
public:
    AVSampleFormat format;
    int sampleRate;
    Layout layout;
    std::string failure;
    std::unique_ptr<SwrContext, FreeSwr> context;
    // The input the context is set up for.
    int inputFormat = -1;
    int inputRate = 0;
    Layout inputLayout;
    // For blocks without a timestamp: where the last one ended, in 1/sampleRate.
    std::int64_t next = 0;

    void configure(const AVFrame& input) {
        AVChannelLayout wanted{};
        if (input.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&wanted, input.ch_layout.nb_channels);
        else
            check(av_channel_layout_copy(&wanted, &input.ch_layout), failure);
        if (context && input.format == inputFormat && input.sample_rate == inputRate
            && av_channel_layout_compare(&wanted, &inputLayout.value) == 0) {
            av_channel_layout_uninit(&wanted);
            return;
        }
        av_channel_layout_uninit(&inputLayout.value);
        inputLayout.value = wanted;
        inputFormat = input.format;
        inputRate = input.sample_rate;
        SwrContext* made = nullptr;
        check(swr_alloc_set_opts2(&made, &layout.value, format, sampleRate, &inputLayout.value,
                                  static_cast<AVSampleFormat>(inputFormat), inputRate, 0, nullptr),
              failure);
        context.reset(made);
        check(swr_init(context.get()), failure);
    }

    Frame output(int capacity) {
        Frame frame;
        frame->format = format;
        frame->sample_rate = sampleRate;
        check(av_channel_layout_copy(&frame->ch_layout, &layout.value), failure);
        frame->nb_samples = std::max(capacity, 1);
        check(av_frame_get_buffer(frame.get(), 0), failure);
        return frame;
    }
};

Resampler::Resampler(int format, int sampleRate, int channels)
    : d(std::make_unique<Private>()) {
    d->format = static_cast<AVSampleFormat>(format);
    d->sampleRate = sampleRate;
    d->failure = "Can not resample to " + std::to_string(sampleRate) + " Hz";
    if (sampleRate <= 0 || channels <= 0)
        throw MediaError(d->failure + ": " + errorText(AVERROR(EINVAL)));
    av_channel_layout_default(&d->layout.value, channels);
}

Resampler::~Resampler() = default;

Frame Resampler::convert(const Frame& input, Rational timeBase) {
    d->configure(*input.get());
    const std::int64_t held = swr_get_delay(d->context.get(), d->sampleRate);
    const std::int64_t timestamp = input.timestamp();
    Frame frame = d->output(swr_get_out_samples(d->context.get(), input.samples()));
    const int converted =
        check(swr_convert(d->context.get(), frame->data, frame->nb_samples,
                          const_cast<const uint8_t**>(input->extended_data), input.samples()),
              d->failure);
    frame->nb_samples = converted;
    const std::int64_t start = timestamp == AV_NOPTS_VALUE
                                   ? d->next
                                   : av_rescale_q(timestamp, AVRational{timeBase.num, timeBase.den},
                                                  AVRational{1, d->sampleRate})
                                         - held;
    frame.setTimestamp(start);
    d->next = start + converted;
    return frame;
}

Frame Resampler::drain() {
    if (!d->context) {
        Frame frame = d->output(0);
        frame->nb_samples = 0;
        return frame;
    }
    const int held = static_cast<int>(swr_get_out_samples(d->context.get(), 0));
    Frame frame = d->output(held);
    const int converted =
        check(swr_convert(d->context.get(), frame->data, held, nullptr, 0), d->failure);
    frame->nb_samples = converted;
    frame.setTimestamp(d->next);
    d->next += converted;
    return frame;
}

} // namespace Velmor::AV
