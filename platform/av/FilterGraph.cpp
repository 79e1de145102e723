#include "platform/av/FilterGraph.h"

#include "platform/av/MediaError.h"

#include <new>

extern "C" {
#include <libavfilter/avfilter.h>
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

class FilterGraph::Private {
public:
    std::unique_ptr<AVFilterGraph, FreeGraph> graph{avfilter_graph_alloc()};
    AVFilterContext* source = nullptr;
    AVFilterContext* sink = nullptr;

    AVFilterContext* addBuffer(const std::string& name, const char* label,
                               const std::string& arguments) {
        AVFilterContext* filter = nullptr;
        check(avfilter_graph_create_filter(&filter, &filterNamed(name), label,
                                           arguments.empty() ? nullptr : arguments.c_str(), nullptr,
                                           graph.get()),
              "Can not set up the filter " + name);
        return filter;
    }

    AVFilterContext* addFilter(const FilterStep& step) {
        const std::string failure = "Can not set up the filter " + step.name;
        AVFilterContext* filter =
            avfilter_graph_alloc_filter(graph.get(), &filterNamed(step.name), nullptr);
        if (!filter)
            throw MediaError(failure + ": " + errorText(AVERROR(ENOMEM)));
        for (const auto& [option, value] : step.options)
            check(av_opt_set(filter, option.c_str(), value.c_str(), AV_OPT_SEARCH_CHILDREN),
                  failure + ": " + option);
        check(avfilter_init_str(filter, nullptr), failure);
        return filter;
    }
};

FilterGraph::FilterGraph(const std::string& source, const std::string& sourceArguments,
                         const std::vector<FilterStep>& filters, const std::string& sink,
                         const std::function<void(AVFilterContext& sink)>& constrainSink)
    : d(std::make_unique<Private>()) {
    if (!d->graph)
        throw std::bad_alloc();
    // One thread: the chains are small and many may run at once, each on a thread of its own.
    d->graph->nb_threads = 1;
    d->source = d->addBuffer(source, "in", sourceArguments);
    AVFilterContext* last = d->source;
    for (const FilterStep& step : filters) {
        AVFilterContext* filter = d->addFilter(step);
        check(avfilter_link(last, 0, filter, 0), "Can not set up the filters");
        last = filter;
    }
    d->sink = d->addBuffer(sink, "out", {});
    if (constrainSink)
        constrainSink(*d->sink);
    check(avfilter_link(last, 0, d->sink, 0), "Can not set up the filters");
    check(avfilter_graph_config(d->graph.get(), nullptr), "Can not set up the filters");
}

FilterGraph::~FilterGraph() = default;

AVFilterContext* FilterGraph::source() const {
    return d->source;
}

AVFilterContext* FilterGraph::sink() const {
    return d->sink;
}

} // namespace Velmor::AV
