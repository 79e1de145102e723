#include "platform/av/AudioFilterChain.h"

#include "platform/av/FilterGraph.h"
#include "platform/av/MediaError.h"

#include <stdexcept>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/opt.h>
#include <libavutil/samplefmt.h>
}

namespace Velmor::AV {
namespace {

std::string layoutName(int channels) {
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, channels);
    char name[64] = {};
    av_channel_layout_describe(&layout, name, sizeof name);
    av_channel_layout_uninit(&layout);
    return name;
}

std::string bufferArguments(const AudioShape& input) {
    const char* format = av_get_sample_fmt_name(static_cast<AVSampleFormat>(input.sampleFormat));
    if (!format || input.sampleRate <= 0 || input.channels <= 0)
        throw MediaError("Can not set up the filter abuffer: " + errorText(AVERROR(EINVAL)));
    return "sample_rate=" + std::to_string(input.sampleRate) + ":sample_fmt=" + format
           + ":channel_layout=" + layoutName(input.channels) + ":time_base=1/"
           + std::to_string(input.sampleRate);
}

void constrain(AVFilterContext& sink, const AudioShape& output) {
    const std::string failure = "Can not set up the filter abuffersink";
    if (output.sampleFormat >= 0) {
        const int formats[] = {output.sampleFormat, AV_SAMPLE_FMT_NONE};
        check(av_opt_set_int_list(&sink, "sample_fmts", formats, AV_SAMPLE_FMT_NONE,
                                  AV_OPT_SEARCH_CHILDREN),
              failure);
    }
    if (output.sampleRate > 0) {
        const int rates[] = {output.sampleRate, -1};
        check(av_opt_set_int_list(&sink, "sample_rates", rates, -1, AV_OPT_SEARCH_CHILDREN),
              failure);
    }
    if (output.channels > 0)
        check(av_opt_set(&sink, "ch_layouts", layoutName(output.channels).c_str(),
                         AV_OPT_SEARCH_CHILDREN),
              failure);
}

std::string shapeText(const AudioShape& shape) {
    const char* format = av_get_sample_fmt_name(static_cast<AVSampleFormat>(shape.sampleFormat));
    return std::string(format ? format : "none") + " " + std::to_string(shape.sampleRate) + " Hz "
           + std::to_string(shape.channels) + " channels";
}

} // namespace

class AudioFilterChain::Private {
public:
    Private(const AudioShape& input, const std::vector<FilterStep>& filters,
            const AudioShape& output)
        : input(input)
        , graph("abuffer", bufferArguments(input), filters, "abuffersink",
                [&output](AVFilterContext& sink) { constrain(sink, output); }) {}

    const AudioShape input;
    FilterGraph graph;
};

AudioFilterChain::AudioFilterChain(AudioShape input, const std::vector<FilterStep>& filters,
                                   AudioShape output)
    : d(std::make_unique<Private>(input, filters, output)) {}

AudioFilterChain::~AudioFilterChain() = default;

void AudioFilterChain::push(const Frame& block) {
    if (shapeOf(block) != d->input)
        throw std::invalid_argument("A filter chain for " + shapeText(d->input)
                                    + " can not take samples of " + shapeText(shapeOf(block)));
    check(av_buffersrc_write_frame(d->graph.source(), block.get()), "Can not filter samples");
}

void AudioFilterChain::close() {
    check(av_buffersrc_add_frame_flags(d->graph.source(), nullptr, 0), "Can not filter samples");
}

bool AudioFilterChain::pull(Frame& block) {
    block.reset();
    const int result = av_buffersink_get_frame(d->graph.sink(), block.get());
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
        return false;
    check(result, "Can not filter samples");
    return true;
}

} // namespace Velmor::AV
