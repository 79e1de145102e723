#include "platform/av/AudioBlock.h"

#include "platform/av/MediaError.h"

#include <algorithm>
#include <stdexcept>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

namespace Velmor::AV {
namespace {

std::string sampleFormatName(int format) {
    const char* name = av_get_sample_fmt_name(static_cast<AVSampleFormat>(format));
    return name ? name : "none";
}

template <class Block> auto channelData(Block& block, int channel) {
    if (block.format() != AV_SAMPLE_FMT_FLTP)
        throw std::invalid_argument("Samples of " + sampleFormatName(block.format())
                                    + " are not planar float");
    if (channel < 0 || channel >= block->ch_layout.nb_channels)
        throw std::out_of_range("A block of " + std::to_string(block->ch_layout.nb_channels)
                                + " channels has no channel " + std::to_string(channel));
    return block->extended_data[channel];
}

} // namespace

int planarFloat() {
    return AV_SAMPLE_FMT_FLTP;
}

int sampleFormat(const std::string& name) {
    const AVSampleFormat format = av_get_sample_fmt(name.c_str());
    if (format == AV_SAMPLE_FMT_NONE)
        throw std::invalid_argument("No sample format named \"" + name + "\"");
    return format;
}

Frame silentBlock(int sampleRate, int channels, int samples) {
    Frame block;
    block->format = AV_SAMPLE_FMT_FLTP;
    block->sample_rate = sampleRate;
    block->nb_samples = samples;
    av_channel_layout_default(&block->ch_layout, channels);
    if (samples > 0)
        check(av_frame_get_buffer(block.get(), 0), "Can not allocate samples");
    for (int channel = 0; channel < channels && samples > 0; ++channel)
        std::fill_n(reinterpret_cast<float*>(block->extended_data[channel]), samples, 0.0f);
    return block;
}

AudioShape shapeOf(const Frame& block) {
    return {block.format(), block->sample_rate, block->ch_layout.nb_channels};
}

float* channelOf(Frame& block, int channel) {
    return reinterpret_cast<float*>(channelData(block, channel));
}

const float* channelOf(const Frame& block, int channel) {
    return reinterpret_cast<const float*>(channelData(block, channel));
}

void addSamples(Frame& into, const Frame& from, int offset) {
    const int samples = from.samples();
    if (offset < 0 || offset + samples > into.samples())
        throw std::out_of_range("Samples " + std::to_string(offset) + " to "
                                + std::to_string(offset + samples) + " are not in a block of "
                                + std::to_string(into.samples()));
    for (int channel = 0; channel < shapeOf(into).channels; ++channel) {
        float* to = channelOf(into, channel) + offset;
        const float* added = channelOf(from, channel);
        for (int index = 0; index < samples; ++index)
            to[index] += added[index];
    }
}

std::string metadataOf(const Frame& frame, const std::string& key) {
    const AVDictionaryEntry* entry = av_dict_get(frame->metadata, key.c_str(), nullptr, 0);
    return entry ? entry->value : std::string();
}

} // namespace Velmor::AV
