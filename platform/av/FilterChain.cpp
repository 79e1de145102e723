#include "platform/av/FilterChain.h"

#include "platform/av/MediaError.h"
#include "platform/av/Picture.h"

#include <stdexcept>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/opt.h>
}

namespace Velmor::AV {
namespace {

struct FreeGraph {
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
};

const AVFilter& filterNamed(const std::string& name) {
    const AVFilter* filter = avfilter_get_by_name(name.c_str());
    if (!filter)
        throw MediaError("Can not set up the filter " + name + ": "
                         + errorText(AVERROR_FILTER_NOT_FOUND));
    return *filter;
}

} // namespace

class FilterChain::Private {
public:
    Size size;
    int pixelFormat = -1;
    std::unique_ptr<AVFilterGraph, FreeGraph> graph{avfilter_graph_alloc()};
    // Owned by the graph.
    AVFilterContext* source = nullptr;
    AVFilterContext* sink = nullptr;
    std::int64_t nextTimestamp = 0;

    void addSource() {
        const std::string arguments =
            "video_size=" + std::to_string(size.width) + "x" + std::to_string(size.height)
            + ":pix_fmt=" + std::to_string(pixelFormat) + ":time_base=1/1:pixel_aspect=1/1";
        check(avfilter_graph_create_filter(&source, &filterNamed("buffer"), "in", arguments.c_str(),
                                           nullptr, graph.get()),
              "Can not set up the filter buffer");
    }

    void addSink(int outputPixelFormat) {
        check(avfilter_graph_create_filter(&sink, &filterNamed("buffersink"), "out", nullptr,
                                           nullptr, graph.get()),
              "Can not set up the filter buffersink");
        const int formats[] = {outputPixelFormat, AV_PIX_FMT_NONE};
        check(
            av_opt_set_int_list(sink, "pix_fmts", formats, AV_PIX_FMT_NONE, AV_OPT_SEARCH_CHILDREN),
            "Can not set up the filter buffersink");
    }

    AVFilterContext* addFilter(const FilterSpec& spec) {
        const std::string failure = "Can not set up the filter " + spec.name;
        AVFilterContext* filter =
            avfilter_graph_alloc_filter(graph.get(), &filterNamed(spec.name), nullptr);
        if (!filter)
            throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
        for (const auto& [option, value] : spec.options)
            check(av_opt_set(filter, option.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN),
                  failure + ": " + option);
        check(avfilter_init_str(filter, nullptr), failure);
        return filter;
    }
};

FilterChain::FilterChain(Size size, int pixelFormat, const std::vector<FilterSpec>& filters,
                         int outputPixelFormat)
    : d(std::make_unique<Private>()) {
    if (!d->graph)
        throw std::bad_alloc();
    d->size = size;
    d->pixelFormat = pixelFormat;
    // One thread: the chains are small and many may run at once, each on a thread of its own.
    d->graph->nb_threads = 1;
    d->addSource();
    AVFilterContext* last = d->source;
    for (const FilterSpec& spec : filters) {
        AVFilterContext* filter = d->addFilter(spec);
        check(avfilter_link(last, 0, filter, 0), "Can not set up the filters");
        last = filter;
    }
    d->addSink(outputPixelFormat);
    check(avfilter_link(last, 0, d->sink, 0), "Can not set up the filters");
    check(avfilter_graph_config(d->graph.get(), nullptr), "Can not set up the filters");
}

FilterChain::~FilterChain() = default;

Frame FilterChain::run(const Frame& picture) {
    if (Size{picture.width(), picture.height()} != d->size || picture.format() != d->pixelFormat)
        throw std::invalid_argument("A filter chain for " + std::to_string(d->size.width) + "x"
                                    + std::to_string(d->size.height) + " "
                                    + pixelFormatName(d->pixelFormat) + " can not take a "
                                    + std::to_string(picture.width()) + "x"
                                    + std::to_string(picture.height()) + " "
                                    + pixelFormatName(picture.format()) + " picture");
    Frame input = reference(picture);
    input.setTimestamp(d->nextTimestamp++);
    check(av_buffersrc_add_frame_flags(d->source, input.get(), 0), "Can not filter a picture");
    Frame output;
    check(av_buffersink_get_frame(d->sink, output.get()), "Can not filter a picture");
    return output;
}

} // namespace Velmor::AV
