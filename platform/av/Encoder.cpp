#include "platform/av/Encoder.h"

#include "platform/av/Frame.h"
#include "platform/av/LogBridge.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

namespace Velmor::AV {
namespace {

struct FreeContext {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};

AVRational toAv(Rational value) {
    return {value.num, value.den};
}

// The rate of the list nearest to the wanted one; the wanted one for an encoder without a list.
int nearestRate(const AVCodec* codec, int wanted) {
    if (!codec->supported_samplerates)
        return wanted;
    int best = codec->supported_samplerates[0];
    for (const int* rate = codec->supported_samplerates; *rate; ++rate) {
        if (std::abs(*rate - wanted) < std::abs(best - wanted))
            best = *rate;
    }
    return best;
}

const AVCodec* findEncoder(const std::string& encoder, const std::string& failure) {
    const AVCodec* codec = avcodec_find_encoder_by_name(encoder.c_str());
    if (!codec)
        throw MediaError(failure + ": " + errorText(AVERROR_ENCODER_NOT_FOUND));
    return codec;
}

AVSampleFormat firstSampleFormat(const AVCodec* codec) {
    return codec->sample_fmts ? codec->sample_fmts[0] : AV_SAMPLE_FMT_FLTP;
}

} // namespace

class Encoder::Private {
public:
    std::string failure;
    std::unique_ptr<AVCodecContext, FreeContext> context;
    // For packets that come out without a duration: one frame in the time base.
    std::int64_t frameDuration = 0;
    bool draining = false;
    bool drained = false;
    // More frames than any encoder holds back before it gives the first one out.
    static constexpr std::int64_t longestDelay = 64;
    // The decoding time of the last packet given out; none before the first.
    std::int64_t lastDts = AV_NOPTS_VALUE;

    const AVCodec* allocate(const std::string& encoder) {
        failure = "Can not encode with " + encoder;
        const AVCodec* codec = findEncoder(encoder, failure);
        context.reset(avcodec_alloc_context3(codec));
        if (!context)
            throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
        return codec;
    }

    // libx265 given fewer frames than it reorders over may give a decoding time that is
    // garbage (far before its presentation, past it, or none at all), which a muxer refuses
    // ("pts/dts pair unsupported") or fills in wrongly. A decoding time is kept at most at its
    // packet's presentation and after the last packet's decoding; one that is missing or before
    // any encoder's delay is replaced.
    void repairDts(AVPacket& packet) {
        if (packet.pts != AV_NOPTS_VALUE) {
            const std::int64_t step = frameDuration > 0 ? frameDuration : packet.duration;
            const bool missing = packet.dts == AV_NOPTS_VALUE;
            if (missing || (step > 0 && packet.dts < packet.pts - longestDelay * step)) {
                packet.dts = lastDts != AV_NOPTS_VALUE
                                 ? lastDts + 1
                                 : packet.pts - std::int64_t(context->has_b_frames) * step;
            }
            packet.dts = std::min(packet.dts, packet.pts);
        }
        if (packet.dts == AV_NOPTS_VALUE)
            return;
        if (lastDts != AV_NOPTS_VALUE && packet.dts <= lastDts)
            packet.dts = lastDts + 1;
        lastDts = packet.dts;
    }

    void setOption(const char* name, const std::string& value) {
        check(av_opt_set(context->priv_data, name, value.c_str(), 0),
              failure + ": option " + name + "=" + value);
    }
};

Encoder::Encoder()
    : d(std::make_unique<Private>()) {}

Encoder::~Encoder() = default;

std::unique_ptr<Encoder> Encoder::video(const VideoEncoderSettings& settings) {
    installLogBridge();
    std::unique_ptr<Encoder> encoder(new Encoder);
    Private& p = *encoder->d;
    const AVCodec* codec = p.allocate(settings.encoder);
    AVCodecContext& context = *p.context;
    if (settings.timeBase.num <= 0 || settings.timeBase.den <= 0)
        throw MediaError(p.failure + ": no time base");
    context.width = settings.width;
    context.height = settings.height;
    context.pix_fmt = static_cast<AVPixelFormat>(settings.pixelFormat);
    context.time_base = toAv(settings.timeBase);
    if (settings.frameRate.num > 0 && settings.frameRate.den > 0) {
        context.framerate = toAv(settings.frameRate);
        p.frameDuration = av_rescale_q(1, av_inv_q(context.framerate), context.time_base);
    }
    context.thread_count = settings.threads;
    if (settings.globalHeader)
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;

    const bool x265 = settings.encoder == "libx265";
    const double quality = settings.quality >= 0 ? settings.quality : x265 ? 28 : 23;
    switch (settings.rateControl) {
    case RateControl::Bitrate:
        context.bit_rate = settings.bitRate;
        break;
    case RateControl::Auto:
        p.setOption("crf", std::to_string(quality));
        context.rc_max_rate = settings.bitRate;
        // Two seconds of the capped rate: room for a key frame without starving the next.
        context.rc_buffer_size = static_cast<int>(
            std::min<std::int64_t>(settings.bitRate * 2, std::numeric_limits<int>::max()));
        break;
    case RateControl::Quality:
        p.setOption("crf", std::to_string(quality));
        break;
    }
    if (!settings.speed.empty())
        p.setOption("preset", settings.speed);
    // x265 chooses no header from the pictures; x264 does unless told not to.
    if (x265)
        p.setOption("x265-params", "log-level=error");
    else if (settings.stitchable)
        p.setOption("x264-params", "stitchable=1");
    check(avcodec_open2(&context, codec, nullptr), p.failure);
    return encoder;
}

std::unique_ptr<Encoder> Encoder::audio(const AudioEncoderSettings& settings) {
    installLogBridge();
    std::unique_ptr<Encoder> encoder(new Encoder);
    Private& p = *encoder->d;
    const AVCodec* codec = p.allocate(settings.encoder);
    AVCodecContext& context = *p.context;
    context.sample_fmt = firstSampleFormat(codec);
    context.sample_rate = nearestRate(codec, settings.sampleRate);
    av_channel_layout_default(&context.ch_layout, settings.channels);
    context.bit_rate = settings.bitRate;
    context.time_base = {1, context.sample_rate};
    if (settings.globalHeader)
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    check(avcodec_open2(&context, codec, nullptr), p.failure);
    return encoder;
}

AudioEncoderInput Encoder::audioInput(const AudioEncoderSettings& settings) {
    const AVCodec* codec = findEncoder(settings.encoder, "Can not encode with " + settings.encoder);
    return {firstSampleFormat(codec), nearestRate(codec, settings.sampleRate), settings.channels};
}

AVCodecContext* Encoder::context() const {
    return d->context.get();
}

std::string Encoder::codecName() const {
    return avcodec_get_name(d->context->codec_id);
}

Rational Encoder::timeBase() const {
    return {d->context->time_base.num, d->context->time_base.den};
}

int Encoder::frameSize() const {
    return d->context->frame_size;
}

int Encoder::sampleFormat() const {
    return d->context->sample_fmt;
}

int Encoder::sampleRate() const {
    return d->context->sample_rate;
}

int Encoder::channels() const {
    return d->context->ch_layout.nb_channels;
}

bool Encoder::send(Frame* frame) {
    if (d->draining)
        return true;
    if (frame)
        (*frame)->pict_type = AV_PICTURE_TYPE_NONE;
    const int result = avcodec_send_frame(d->context.get(), frame ? frame->get() : nullptr);
    if (result == AVERROR(EAGAIN))
        return false;
    check(result, d->failure);
    if (!frame)
        d->draining = true;
    return true;
}

bool Encoder::receive(Packet& packet) {
    packet.reset();
    const int result = avcodec_receive_packet(d->context.get(), packet.get());
    if (result == AVERROR(EAGAIN))
        return false;
    if (result == AVERROR_EOF) {
        d->drained = true;
        return false;
    }
    check(result, d->failure);
    if (packet->duration <= 0 && d->frameDuration > 0)
        packet->duration = d->frameDuration;
    d->repairDts(*packet.get());
    return true;
}

bool Encoder::drained() const {
    return d->drained;
}

} // namespace Velmor::AV
