#include "platform/av/ImageWriter.h"

#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"

#include <cerrno>
#include <cstring>
#include <memory>
#include <unistd.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace Velmor::AV {
namespace {

struct FreeContext {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};

Packet encodePng(const Frame& picture, const std::string& failure) {
    if (picture.format() != AV_PIX_FMT_RGB24)
        throw MediaError(failure + ": the picture is not RGB24");
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    if (!codec)
        throw MediaError(failure + ": " + errorText(AVERROR_ENCODER_NOT_FOUND));
    std::unique_ptr<AVCodecContext, FreeContext> context(avcodec_alloc_context3(codec));
    if (!context)
        throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
    context->width = picture.width();
    context->height = picture.height();
    context->pix_fmt = AV_PIX_FMT_RGB24;
    context->time_base = AVRational{1, 25};
    check(avcodec_open2(context.get(), codec, nullptr), failure);
    check(avcodec_send_frame(context.get(), picture.get()), failure);
    check(avcodec_send_frame(context.get(), nullptr), failure);
    Packet packet;
    check(avcodec_receive_packet(context.get(), packet.get()), failure);
    return packet;
}

void writeAll(const Packet& packet, int descriptor, const std::string& failure) {
    const auto* data = packet->data;
    auto left = static_cast<std::size_t>(packet->size);
    while (left > 0) {
        const ssize_t written = ::write(descriptor, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw MediaError(failure + ": " + std::strerror(errno));
        data += written;
        left -= static_cast<std::size_t>(written);
    }
}

} // namespace

void writePng(const Frame& picture, int descriptor, const std::string& name) {
    const std::string failure = "Can not write " + name;
    writeAll(encodePng(picture, failure), descriptor, failure);
}

} // namespace Velmor::AV
