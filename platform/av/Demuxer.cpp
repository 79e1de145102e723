#include "platform/av/Demuxer.h"

#include "platform/av/LogBridge.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

namespace Velmor::AV {
namespace {

struct CloseInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

std::string rationalText(AVRational value) {
    return std::to_string(value.num) + "/" + std::to_string(value.den);
}

StreamInfo describe(const AVStream& stream) {
    const AVCodecParameters& codec = *stream.codecpar;
    StreamInfo info;
    info.index = stream.index;
    const char* type = av_get_media_type_string(codec.codec_type);
    info.type = type ? type : "unknown";
    info.codec = avcodec_get_name(codec.codec_id);
    if (stream.duration != AV_NOPTS_VALUE)
        info.durationMs = av_rescale_q(stream.duration, stream.time_base, AVRational{1, 1000});
    if (codec.codec_type == AVMEDIA_TYPE_VIDEO) {
        info.width = codec.width;
        info.height = codec.height;
        info.frameRate = rationalText(stream.avg_frame_rate);
        const char* format = av_get_pix_fmt_name(static_cast<AVPixelFormat>(codec.format));
        info.pixelFormat = format ? format : "";
    } else if (codec.codec_type == AVMEDIA_TYPE_AUDIO) {
        info.sampleRate = codec.sample_rate;
        info.channels = codec.ch_layout.nb_channels;
    }
    return info;
}

MediaInfo describe(const AVFormatContext& context, const std::string& path) {
    MediaInfo info;
    info.path = path;
    info.format = context.iformat->name;
    if (context.duration != AV_NOPTS_VALUE)
        info.durationMs = av_rescale(context.duration, 1000, AV_TIME_BASE);
    if (context.bit_rate > 0)
        info.bitRate = context.bit_rate;
    if (context.pb)
        info.size = std::max<std::int64_t>(avio_size(context.pb), 0);
    for (unsigned index = 0; index < context.nb_streams; ++index)
        info.streams.push_back(describe(*context.streams[index]));
    return info;
}

} // namespace

class Demuxer::Private {
public:
    std::string path;
    Interrupted interrupted;
    std::unique_ptr<AVFormatContext, CloseInput> context;
    MediaInfo info;

    static int interruptCallback(void* opaque) {
        const auto* self = static_cast<const Private*>(opaque);
        return self->interrupted && self->interrupted() ? 1 : 0;
    }

    void open() {
        const std::string failure = "Can not open media file: " + path;
        AVFormatContext* opened = avformat_alloc_context();
        if (!opened)
            throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
        opened->interrupt_callback = {&Private::interruptCallback, this};
        // avformat_open_input frees the context itself when it fails.
        check(avformat_open_input(&opened, path.c_str(), nullptr, nullptr), failure);
        context.reset(opened);
        check(avformat_find_stream_info(context.get(), nullptr), failure);
        info = describe(*context, path);
    }
};

Demuxer::Demuxer(const std::string& path, Interrupted interrupted)
    : d(std::make_unique<Private>()) {
    installLogBridge();
    d->path = path;
    d->interrupted = std::move(interrupted);
    d->open();
}

Demuxer::~Demuxer() = default;

const std::string& Demuxer::path() const {
    return d->path;
}

const MediaInfo& Demuxer::info() const {
    return d->info;
}

AVFormatContext* Demuxer::context() const {
    return d->context.get();
}

AVStream* Demuxer::stream(int index) const {
    return d->context->streams[index];
}

int Demuxer::bestStream(const std::string& type) const {
    const AVMediaType mediaType = type == "video"   ? AVMEDIA_TYPE_VIDEO
                                  : type == "audio" ? AVMEDIA_TYPE_AUDIO
                                                    : AVMEDIA_TYPE_UNKNOWN;
    const int found = av_find_best_stream(d->context.get(), mediaType, -1, -1, nullptr, 0);
    return found < 0 ? -1 : found;
}

bool Demuxer::read(Packet& packet) {
    packet.reset();
    const int result = av_read_frame(d->context.get(), packet.get());
    if (result == AVERROR_EOF)
        return false;
    check(result, "Can not read media file: " + d->path);
    return true;
}

void Demuxer::seek(int streamIndex, std::int64_t timestamp) {
    check(av_seek_frame(d->context.get(), streamIndex, timestamp, AVSEEK_FLAG_BACKWARD),
          "Can not seek in media file: " + d->path);
}

} // namespace Velmor::AV
