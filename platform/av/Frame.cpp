#include "platform/av/Frame.h"

#include "platform/av/MediaError.h"

#include <algorithm>
#include <new>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/imgutils.h>
}

namespace Velmor::AV {

void Frame::Free::operator()(AVFrame* frame) const {
    av_frame_free(&frame);
}

Frame::Frame()
    : frame(av_frame_alloc()) {
    if (!frame)
        throw std::bad_alloc();
}

Frame Frame::picture(int width, int height, int pixelFormat) {
    Frame picture;
    picture->width = width;
    picture->height = height;
    picture->format = pixelFormat;
    check(av_frame_get_buffer(picture.get(), 0), "Can not allocate a picture");
    // Zero so that a picture nobody painted is defined, also in the padding of each line.
    for (int plane = 0; plane < AV_NUM_DATA_POINTERS && picture->buf[plane]; ++plane)
        std::fill_n(picture->buf[plane]->data, picture->buf[plane]->size, 0);
    return picture;
}

int Frame::width() const {
    return frame->width;
}

int Frame::height() const {
    return frame->height;
}

int Frame::format() const {
    return frame->format;
}

std::int64_t Frame::timestamp() const {
    return frame->best_effort_timestamp != AV_NOPTS_VALUE ? frame->best_effort_timestamp
                                                          : frame->pts;
}

std::int64_t Frame::packetDecodingTimestamp() const {
    return frame->pkt_dts;
}

void Frame::setTimestamp(std::int64_t timestamp) {
    frame->pts = timestamp;
    frame->best_effort_timestamp = timestamp;
}

int Frame::samples() const {
    return frame->nb_samples;
}

void Frame::reset() {
    av_frame_unref(frame.get());
}

} // namespace Velmor::AV
