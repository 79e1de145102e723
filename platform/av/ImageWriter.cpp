#include "platform/av/ImageWriter.h"

#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace Velmor::AV {
namespace {

struct FreeContext {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
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

void writeFile(const Packet& packet, const std::string& path, const std::string& failure) {
    std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "wb"));
    if (!file)
        throw MediaError(failure + ": " + std::strerror(errno));
    const auto size = static_cast<std::size_t>(packet->size);
    const bool written = std::fwrite(packet->data, 1, size, file.get()) == size;
    const int writeError = errno;
    const bool closed = std::fclose(file.release()) == 0;
    if (written && closed)
        return;
    const int error = written ? errno : writeError;
    std::remove(path.c_str());
    throw MediaError(failure + ": " + std::strerror(error));
}

} // namespace

void writePng(const Frame& picture, const std::string& path) {
    const std::string failure = "Can not write " + path;
    writeFile(encodePng(picture, failure), path, failure);
}

} // namespace Velmor::AV
