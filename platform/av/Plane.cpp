#include "platform/av/Plane.h"

#include <stdexcept>
#include <string>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

namespace Velmor::AV {
namespace {

const AVPixFmtDescriptor& byteFormat(const Frame& picture) {
    const AVPixFmtDescriptor* descriptor =
        av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format()));
    if (!descriptor)
        throw std::invalid_argument("No pixel format with the number "
                                    + std::to_string(picture.format()));
    const bool byteSamples =
        descriptor->comp[0].depth == 8
        && !(descriptor->flags
             & (AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_PAL));
    if (!byteSamples)
        throw std::invalid_argument("Can not paint the pixels of a " + std::string(descriptor->name)
                                    + " picture by hand");
    return *descriptor;
}

int countPlanes(const AVPixFmtDescriptor& descriptor) {
    int planes = 0;
    for (int component = 0; component < descriptor.nb_components; ++component) {
        if (descriptor.comp[component].plane + 1 > planes)
            planes = descriptor.comp[component].plane + 1;
    }
    return planes;
}

template <class Byte> PlaneOf<Byte> describe(const Frame& picture, int index, Byte* data) {
    const AVPixFmtDescriptor& descriptor = byteFormat(picture);
    if (index < 0 || index >= countPlanes(descriptor))
        throw std::out_of_range("A " + std::string(descriptor.name) + " picture has no plane "
                                + std::to_string(index));
    const bool isChroma = (index == 1 || index == 2) && !(descriptor.flags & AV_PIX_FMT_FLAG_RGB);
    const int shiftX = isChroma ? descriptor.log2_chroma_w : 0;
    const int shiftY = isChroma ? descriptor.log2_chroma_h : 0;
    PlaneOf<Byte> plane;
    plane.data = data;
    plane.linesize = picture->linesize[index];
    plane.width = -((-picture.width()) >> shiftX);
    plane.height = -((-picture.height()) >> shiftY);
    plane.bytesPerPixel = descriptor.comp[0].step;
    for (int component = 0; component < descriptor.nb_components; ++component) {
        if (descriptor.comp[component].plane == index)
            plane.bytesPerPixel = descriptor.comp[component].step;
    }
    return plane;
}

} // namespace

Plane planeOf(Frame& picture, int index) {
    const ConstPlane plane = planeOf(static_cast<const Frame&>(picture), index);
    return {picture->data[index], plane.linesize, plane.width, plane.height, plane.bytesPerPixel};
}

ConstPlane planeOf(const Frame& picture, int index) {
    const std::uint8_t* data = index >= 0 && index < 4 ? picture->data[index] : nullptr;
    return describe<const std::uint8_t>(picture, index, data);
}

int planeCount(const Frame& picture) {
    return countPlanes(byteFormat(picture));
}

} // namespace Velmor::AV
