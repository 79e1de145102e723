#include "platform/av/Muxer.h"

#include "platform/av/Demuxer.h"
#include "platform/av/DescriptorIo.h"
#include "platform/av/Encoder.h"
#include "platform/av/LogBridge.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"

#include <algorithm>
#include <cstring>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Velmor::AV {
namespace {

struct FreeOutput {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};

struct FreeDictionary {
    void operator()(AVDictionary* dictionary) const { av_dict_free(&dictionary); }
};

// MP4's default HEVC tag, hev1, is one Apple's players refuse; hvc1 plays everywhere.
void tagHevc(const AVFormatContext& context, AVCodecParameters& parameters) {
    const std::string format = context.oformat->name;
    if (parameters.codec_id == AV_CODEC_ID_HEVC && (format == "mp4" || format == "mov"))
        parameters.codec_tag = MKTAG('h', 'v', 'c', '1');
}

} // namespace

class Muxer::Private {
public:
    Private(int descriptor, const std::string& name)
        : name(name)
        , failure("Can not write " + name)
        , io(descriptor, name) {}

    const std::string name;
    const std::string failure;
    // Before the context, which writes through it until it goes.
    DescriptorIo io;
    std::unique_ptr<AVFormatContext, FreeOutput> context;
    // Per stream: the encoder's time base, and what went in.
    std::vector<AVRational> encoderTimeBases;
    std::vector<Written> written;
    bool headerWritten = false;
    bool finished = false;
};

Muxer::Muxer(int descriptor, const std::string& name, const std::string& format)
    : d(std::make_unique<Private>(descriptor, name)) {
    installLogBridge();
    AVFormatContext* context = nullptr;
    check(avformat_alloc_output_context2(&context, nullptr, format.c_str(), name.c_str()),
          d->failure);
    d->context.reset(context);
    if (!(context->oformat->flags & AVFMT_NOFILE))
        d->io.attach(*context);
}

Muxer::~Muxer() = default;

const std::string& Muxer::name() const {
    return d->name;
}

AVFormatContext* Muxer::context() const {
    return d->context.get();
}

bool Muxer::wantsGlobalHeader() const {
    return d->context->oformat->flags & AVFMT_GLOBALHEADER;
}

int Muxer::addStream(const Encoder& encoder) {
    AVStream* stream = avformat_new_stream(d->context.get(), nullptr);
    if (!stream)
        throw MediaError(d->failure + ": " + errorText(AVERROR(ENOMEM)));
    check(avcodec_parameters_from_context(stream->codecpar, encoder.context()), d->failure);
    tagHevc(*d->context, *stream->codecpar);
    // A hint only: the muxer may choose another in writeHeader.
    stream->time_base = encoder.context()->time_base;
    if (encoder.context()->codec_type == AVMEDIA_TYPE_VIDEO)
        stream->avg_frame_rate = encoder.context()->framerate;
    d->encoderTimeBases.push_back(encoder.context()->time_base);
    d->written.emplace_back();
    return stream->index;
}

int Muxer::addStream(const Demuxer& source, int index) {
    const AVStream* from = source.stream(index);
    AVStream* stream = avformat_new_stream(d->context.get(), nullptr);
    if (!stream)
        throw MediaError(d->failure + ": " + errorText(AVERROR(ENOMEM)));
    check(avcodec_parameters_copy(stream->codecpar, from->codecpar), d->failure);
    // The source's tag may belong to another container; this one chooses its own.
    stream->codecpar->codec_tag = 0;
    tagHevc(*d->context, *stream->codecpar);
    stream->time_base = from->time_base;
    stream->avg_frame_rate = from->avg_frame_rate;
    d->encoderTimeBases.push_back(from->time_base);
    d->written.emplace_back();
    return stream->index;
}

void Muxer::writeHeader() {
    AVFormatContext& context = *d->context;
    AVDictionary* raw = nullptr;
    const std::string name = context.oformat->name;
    if (name == "mp4" || name == "mov")
        av_dict_set(&raw, "movflags", "+faststart", 0);
    std::unique_ptr<AVDictionary, FreeDictionary> options(raw);
    raw = options.release();
    const int result = avformat_write_header(&context, &raw);
    options.reset(raw);
    check(result, d->failure);
    d->headerWritten = true;
}

void Muxer::write(int stream, Packet& packet) {
    if (!d->headerWritten)
        throw std::logic_error(d->failure + ": a packet before the header");
    AVStream* target = d->context->streams[stream];
    const AVRational from = d->encoderTimeBases[stream];
    Written& written = d->written[stream];
    ++written.packets;
    written.bytes += packet->size;
    if (packet->pts != AV_NOPTS_VALUE) {
        const std::int64_t end =
            av_rescale_q(packet->pts + packet->duration, from, AVRational{1, 1000});
        written.durationMs = std::max(written.durationMs, end);
    }
    packet->stream_index = stream;
    // Read now, after the header: the muxer may have changed it there.
    av_packet_rescale_ts(packet.get(), from, target->time_base);
    check(av_interleaved_write_frame(d->context.get(), packet.get()), d->failure);
}

void Muxer::finish() {
    if (d->finished)
        return;
    d->finished = true;
    check(av_write_trailer(d->context.get()), d->failure);
    d->io.flush();
}

Muxer::Written Muxer::written(int stream) const {
    return d->written.at(stream);
}

} // namespace Velmor::AV
