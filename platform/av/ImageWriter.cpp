#include "platform/av/ImageWriter.h"

#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/OutputFormats.h"
#include "platform/av/Packet.h"
#include "platform/av/Scaler.h"

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

using Context = std::unique_ptr<AVCodecContext, FreeContext>;

Context openEncoder(AVCodecID id, const Frame& picture, const std::string& failure) {
    const AVCodec* codec = avcodec_find_encoder(id);
    if (!codec)
        throw MediaError(failure + ": " + errorText(AVERROR_ENCODER_NOT_FOUND));
    Context context(avcodec_alloc_context3(codec));
    if (!context)
        throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
    context->width = picture.width();
    context->height = picture.height();
    context->pix_fmt = static_cast<AVPixelFormat>(picture.format());
    context->time_base = AVRational{1, 25};
    return context;
}

Packet encodeOne(AVCodecContext& context, const Frame& picture, const std::string& failure) {
    check(avcodec_send_frame(&context, picture.get()), failure);
    check(avcodec_send_frame(&context, nullptr), failure);
    Packet packet;
    check(avcodec_receive_packet(&context, packet.get()), failure);
    return packet;
}

void requireRgb(const Frame& picture, const std::string& failure) {
    if (picture.format() != AV_PIX_FMT_RGB24)
        throw MediaError(failure + ": the picture is not RGB24");
}

Packet encodePng(const Frame& picture, const std::string& failure) {
    requireRgb(picture, failure);
    Context context = openEncoder(AV_CODEC_ID_PNG, picture, failure);
    check(avcodec_open2(context.get(), context->codec, nullptr), failure);
    return encodeOne(*context, picture, failure);
}

Packet encodeJpeg(const Frame& picture, const std::string& failure) {
    requireRgb(picture, failure);
    // Full range in a plain YUV format rather than the deprecated YUVJ ones.
    Frame full = Frame::picture(picture.width(), picture.height(), AV_PIX_FMT_YUV444P);
    full->color_range = AVCOL_RANGE_JPEG;
    Scaler(1).scale(picture, full);
    Context context = openEncoder(AV_CODEC_ID_MJPEG, full, failure);
    context->color_range = AVCOL_RANGE_JPEG;
    context->flags |= AV_CODEC_FLAG_QSCALE;
    context->global_quality = FF_QP2LAMBDA * 2;
    check(avcodec_open2(context.get(), context->codec, nullptr), failure);
    full.get()->quality = context->global_quality;
    return encodeOne(*context, full, failure);
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

void writeJpeg(const Frame& picture, int descriptor, const std::string& name) {
    const std::string failure = "Can not write " + name;
    writeAll(encodeJpeg(picture, failure), descriptor, failure);
}

void writePicture(const Frame& picture, int descriptor, const std::string& name) {
    if (pictureFormatFor(name) == PictureFormat::Jpeg)
        writeJpeg(picture, descriptor, name);
    else
        writePng(picture, descriptor, name);
}

} // namespace Velmor::AV
