#include "platform/av/Samples.h"

#include "platform/av/MediaError.h"

#include <stdexcept>
#include <string>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

namespace Velmor::AV {

Frame sliceSamples(const Frame& block, int skip, int count) {
    if (skip < 0 || count < 0 || count > block.samples() - skip)
        throw std::out_of_range("Samples " + std::to_string(skip) + "+" + std::to_string(count)
                                + " are outside a block of " + std::to_string(block.samples()));
    Frame slice;
    check(av_frame_ref(slice.get(), block.get()), "Can not share a block of samples");
    const auto format = static_cast<AVSampleFormat>(block.format());
    const int channels = block->ch_layout.nb_channels;
    const bool planar = av_sample_fmt_is_planar(format);
    const int offset = skip * av_get_bytes_per_sample(format) * (planar ? 1 : channels);
    const int planes = planar ? channels : 1;
    // extended_data is data itself up to 8 planes, an array of its own beyond.
    for (int plane = 0; plane < planes; ++plane)
        slice->extended_data[plane] += offset;
    if (slice->extended_data != slice->data) {
        for (int plane = 0; plane < AV_NUM_DATA_POINTERS && plane < planes; ++plane)
            slice->data[plane] += offset;
    }
    slice->nb_samples = count;
    return slice;
}

} // namespace Velmor::AV
