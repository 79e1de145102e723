#include "platform/av/Picture.h"

#include "platform/av/MediaError.h"

#include <stdexcept>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

namespace Velmor::AV {
namespace {

const AVPixFmtDescriptor& addressableFormat(int pixelFormat) {
    const AVPixFmtDescriptor* descriptor =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(pixelFormat));
    if (!descriptor)
        throw std::invalid_argument("No pixel format with the number "
                                    + std::to_string(pixelFormat));
    if (descriptor->flags & (AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BITSTREAM))
        throw std::invalid_argument("Can not address the pixels of a "
                                    + std::string(descriptor->name) + " picture");
    return *descriptor;
}

std::string describe(const Rect& region) {
    return std::to_string(region.width) + "x" + std::to_string(region.height) + " at "
           + std::to_string(region.x) + "," + std::to_string(region.y);
}

void checkInside(const Rect& region, const Frame& picture) {
    if (region.isEmpty() || region.x < 0 || region.y < 0
        || region.x > picture.width() - region.width || region.y > picture.height() - region.height)
        throw std::out_of_range("The region " + describe(region) + " is not inside the "
                                + std::to_string(picture.width()) + "x"
                                + std::to_string(picture.height()) + " picture");
}

// Points data at the region's corner in every plane, as ffmpeg's crop filter does: chroma planes
// (1 and 2) move by the subsampled offset, luma and alpha by the full one, a palette not at all.
void pointAtRegion(std::uint8_t* data[4], const int linesize[4], const Frame& picture,
                   const Rect& region) {
    const AVPixFmtDescriptor& descriptor = addressableFormat(picture.format());
    int pixelSteps[4] = {};
    av_image_fill_max_pixsteps(pixelSteps, nullptr, &descriptor);
    const bool hasPalette = descriptor.flags & AV_PIX_FMT_FLAG_PAL;
    for (int plane = 0; plane < 4; ++plane) {
        data[plane] = picture->data[plane];
        if (!data[plane] || (hasPalette && plane > 0))
            continue;
        const bool isChroma = plane == 1 || plane == 2;
        const int x = isChroma ? (region.x >> descriptor.log2_chroma_w) : region.x;
        const int y = isChroma ? (region.y >> descriptor.log2_chroma_h) : region.y;
        data[plane] += static_cast<std::ptrdiff_t>(y) * linesize[plane]
                       + static_cast<std::ptrdiff_t>(x) * pixelSteps[plane];
    }
}

bool isYuvj(AVPixelFormat format) {
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P
           || format == AV_PIX_FMT_YUVJ444P || format == AV_PIX_FMT_YUVJ440P
           || format == AV_PIX_FMT_YUVJ411P;
}

// Grey and grey with alpha: libswscale treats them as full range whatever the frame says.
bool isGrey(const AVPixFmtDescriptor& descriptor) {
    return !(descriptor.flags & AV_PIX_FMT_FLAG_RGB) && descriptor.nb_components <= 2;
}

} // namespace

int pixelFormat(const std::string& name) {
    const AVPixelFormat format = av_get_pix_fmt(name.c_str());
    if (format == AV_PIX_FMT_NONE)
        throw std::invalid_argument("No pixel format named \"" + name + "\"");
    return format;
}

std::string pixelFormatName(int pixelFormat) {
    const char* name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(pixelFormat));
    return name ? name : "none";
}

Size chromaBlock(int pixelFormat) {
    const AVPixFmtDescriptor& descriptor = addressableFormat(pixelFormat);
    return {1 << descriptor.log2_chroma_w, 1 << descriptor.log2_chroma_h};
}

bool isFullRange(const Frame& picture) {
    const auto format = static_cast<AVPixelFormat>(picture.format());
    const AVPixFmtDescriptor& descriptor = addressableFormat(format);
    return (descriptor.flags & AV_PIX_FMT_FLAG_RGB) || isGrey(descriptor) || isYuvj(format)
           || picture->color_range == AVCOL_RANGE_JPEG;
}

Frame reference(const Frame& picture) {
    Frame shared;
    check(av_frame_ref(shared.get(), picture.get()), "Can not share a picture");
    return shared;
}

Frame copyOf(const Frame& picture) {
    Frame copy = Frame::picture(picture.width(), picture.height(), picture.format());
    check(av_frame_copy(copy.get(), picture.get()), "Can not copy a picture");
    check(av_frame_copy_props(copy.get(), picture.get()), "Can not copy a picture");
    return copy;
}

void showRegion(Frame& view, const Frame& picture, const Rect& region) {
    checkInside(region, picture);
    view.reset();
    // The view holds references of its own, so the picture's buffers outlive it.
    check(av_frame_ref(view.get(), picture.get()), "Can not show a region of a picture");
    pointAtRegion(view->data, view->linesize, picture, region);
    view->width = region.width;
    view->height = region.height;
}

void paintBlack(Frame& picture, const Rect& region) {
    checkInside(region, picture);
    std::uint8_t* data[4] = {};
    pointAtRegion(data, picture->linesize, picture, region);
    const ptrdiff_t linesize[4] = {picture->linesize[0], picture->linesize[1], picture->linesize[2],
                                   picture->linesize[3]};
    check(av_image_fill_black(data, linesize, static_cast<AVPixelFormat>(picture.format()),
                              isFullRange(picture) ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG,
                              region.width, region.height),
          "Can not paint " + describe(region) + " of a " + pixelFormatName(picture.format())
              + " picture black");
}

void copyProperties(Frame& to, const Frame& from) {
    check(av_frame_copy_props(to.get(), from.get()), "Can not copy the properties of a frame");
    const auto format = static_cast<AVPixelFormat>(to.format());
    const AVPixFmtDescriptor& descriptor = addressableFormat(format);
    if (descriptor.flags & AV_PIX_FMT_FLAG_RGB) {
        to->color_range = AVCOL_RANGE_UNSPECIFIED;
        to->colorspace = AVCOL_SPC_RGB;
        return;
    }
    if (from.format() != to.format() && (from->colorspace == AVCOL_SPC_RGB))
        to->colorspace = AVCOL_SPC_UNSPECIFIED;
    to->color_range = isYuvj(format) || isGrey(descriptor) ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
}

} // namespace Velmor::AV
