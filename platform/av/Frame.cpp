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
    : m_frame(av_frame_alloc()) {
    if (!m_frame)
        throw std::bad_alloc();
}

Frame Frame::picture(int width, int height, int pixelFormat) {
    Frame frame;
    frame->width = width;
    frame->height = height;
    frame->format = pixelFormat;
    check(av_frame_get_buffer(frame.get(), 0), "Can not allocate a picture");
    // Zero so that a picture nobody painted is defined, also in the padding of each line.
    for (int plane = 0; plane < AV_NUM_DATA_POINTERS && frame->buf[plane]; ++plane)
        std::fill_n(frame->buf[plane]->data, frame->buf[plane]->size, 0);
    return frame;
}

int Frame::width() const {
    return m_frame->width;
}

int Frame::height() const {
    return m_frame->height;
}

int Frame::format() const {
    return m_frame->format;
}

std::int64_t Frame::timestamp() const {
    return m_frame->best_effort_timestamp != AV_NOPTS_VALUE ? m_frame->best_effort_timestamp
                                                            : m_frame->pts;
}

void Frame::setTimestamp(std::int64_t timestamp) {
    m_frame->pts = timestamp;
    m_frame->best_effort_timestamp = timestamp;
}

int Frame::samples() const {
    return m_frame->nb_samples;
}

void Frame::reset() {
    av_frame_unref(m_frame.get());
}

} // namespace Velmor::AV
