#include "platform/av/Demuxer.h"

#include "platform/av/LogBridge.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/display.h>
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

// The display matrix's angle, counterclockwise; else the "rotate" tag, which counts clockwise.
int rotation(const AVStream& stream) {
    const std::uint8_t* matrix =
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (matrix) {
        const double angle = av_display_rotation_get(reinterpret_cast<const std::int32_t*>(matrix));
        return std::isnan(angle) ? 0 : static_cast<int>(std::lround(angle));
    }
    const AVDictionaryEntry* tag = av_dict_get(stream.metadata, "rotate", nullptr, 0);
    return tag ? -std::atoi(tag->value) : 0;
}

bool mirrored(const AVStream& stream) {
    const auto* matrix = reinterpret_cast<const std::int32_t*>(
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
    if (!matrix)
        return false;
    // In 16.16 fixed point; the determinant's sign is all that counts.
    const double determinant =
        static_cast<double>(matrix[0]) * matrix[4] - static_cast<double>(matrix[1]) * matrix[3];
    return determinant < 0;
}

StreamInfo describe(AVFormatContext& context, AVStream& stream) {
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
        info.rotation = rotation(stream);
        info.mirrored = mirrored(stream);
        const AVRational shape = av_guess_sample_aspect_ratio(&context, &stream, nullptr);
        if (shape.num > 0 && shape.den > 0)
            info.sampleAspectRatio = {shape.num, shape.den};
        info.attachedPicture = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
    } else if (codec.codec_type == AVMEDIA_TYPE_AUDIO) {
        info.sampleRate = codec.sample_rate;
        info.channels = codec.ch_layout.nb_channels;
    }
    return info;
}

MediaInfo describe(AVFormatContext& context, const std::string& path) {
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
        info.streams.push_back(describe(context, *context.streams[index]));
    return info;
}

// A descriptor the pipe protocol reads but does not close.
struct Descriptor {
    int fd = -1;
    Descriptor() = default;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd >= 0)
            ::close(fd);
    }
};

bool isFifo(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

} // namespace

class Demuxer::Private {
public:
    std::string path;
    Interrupted interrupted;
    // Declared before the context, so that it is closed after it.
    Descriptor fifo;
    std::unique_ptr<AVFormatContext, CloseInput> context;
    MediaInfo info;

    static int interruptCallback(void* opaque) {
        const auto* self = static_cast<const Private*>(opaque);
        return self->interrupted && self->interrupted() ? 1 : 0;
    }

    // A pipe that nobody writes to yet reads as empty; like ffmpeg, wait until somebody opens it
    // for writing, asking the interrupt callback between short polls (a time limit ends the wait).
    // Linux reports neither data nor a hang-up on a pipe that never had a writer.
    void waitForWriter(const std::string& failure) {
        pollfd waiting{fifo.fd, POLLIN, 0};
        while (true) {
            const int ready = ::poll(&waiting, 1, 50);
            if (ready > 0)
                return;
            if (ready < 0 && errno != EINTR)
                throw MediaError(failure + ": " + std::strerror(errno));
            if (interrupted && interrupted())
                throw MediaError(failure + ": " + errorText(AVERROR_EXIT));
        }
    }

    void open() {
        const std::string failure = "Can not open media file: " + path;
        std::string url = path;
        if (isFifo(path)) {
            // Without O_NONBLOCK both open and read would wait in the kernel, where no
            // interrupt callback reaches; the library retries EAGAIN and asks the callback.
            fifo.fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
            if (fifo.fd < 0)
                throw MediaError(failure + ": " + std::strerror(errno));
            url = "pipe:" + std::to_string(fifo.fd);
            waitForWriter(failure);
        }
        AVFormatContext* opened = avformat_alloc_context();
        if (!opened)
            throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
        opened->interrupt_callback = {&Private::interruptCallback, this};
        // avformat_open_input frees the context itself when it fails.
        check(avformat_open_input(&opened, url.c_str(), nullptr, nullptr), failure);
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

Rational Demuxer::timeBase(int index) const {
    const AVRational value = stream(index)->time_base;
    return {value.num, value.den};
}

Rational Demuxer::frameRate(int index) const {
    AVRational value = stream(index)->avg_frame_rate;
    if (value.num <= 0 || value.den <= 0)
        value = stream(index)->r_frame_rate;
    if (value.num <= 0 || value.den <= 0)
        return {0, 1};
    return {value.num, value.den};
}

bool Demuxer::canSeek() const {
    return d->fifo.fd < 0;
}

std::int64_t Demuxer::startTime() const {
    return d->context->start_time == AV_NOPTS_VALUE ? 0 : d->context->start_time;
}

std::int64_t Demuxer::streamStartTime(int index) const {
    return stream(index)->start_time;
}

std::int64_t Demuxer::indexedKeyFrameAtOrBefore(int index, std::int64_t timestamp) const {
    AVStream* indexed = stream(index);
    const int entry = av_index_search_timestamp(indexed, timestamp, AVSEEK_FLAG_BACKWARD);
    if (entry < 0)
        return AV_NOPTS_VALUE;
    return avformat_index_get_entry(indexed, entry)->timestamp;
}

std::int64_t Demuxer::origin() const {
    const std::string format = d->context->iformat->name;
    if (format.rfind("mov,", 0) == 0 || format.rfind("matroska", 0) == 0)
        return 0;
    return startTime();
}

int Demuxer::bestStream(const std::string& type) const {
    const AVMediaType mediaType = type == "video"   ? AVMEDIA_TYPE_VIDEO
                                  : type == "audio" ? AVMEDIA_TYPE_AUDIO
                                                    : AVMEDIA_TYPE_UNKNOWN;
    const int found = av_find_best_stream(d->context.get(), mediaType, -1, -1, nullptr, 0);
    // The library prefers a video to cover art, but takes cover art when there is nothing else.
    if (found < 0 || d->info.streams.at(found).attachedPicture)
        return -1;
    return found;
}

void Demuxer::readOnly(int streamIndex) {
    for (unsigned index = 0; index < d->context->nb_streams; ++index)
        d->context->streams[index]->discard =
            static_cast<int>(index) == streamIndex ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

bool Demuxer::read(Packet& packet) {
    do {
        packet.reset();
        const int result = av_read_frame(d->context.get(), packet.get());
        if (result == AVERROR_EOF)
            return false;
        check(result, "Can not read media file: " + d->path);
        // What probing the streams read comes first, of every stream.
    } while (stream(packet.streamIndex())->discard == AVDISCARD_ALL);
    return true;
}

void Demuxer::seek(int streamIndex, std::int64_t timestamp) {
    check(av_seek_frame(d->context.get(), streamIndex, timestamp, AVSEEK_FLAG_BACKWARD),
          "Can not seek in media file: " + d->path);
}

} // namespace Velmor::AV
