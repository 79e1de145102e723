#pragma once

#include "platform/av/FilterStep.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

struct AVFilterContext;

namespace Velmor::AV {

// A libavfilter graph of one chain: a buffer source, the filters one after another, a buffer
// sink; what the video and the audio filter chains share. One thread.
class FilterGraph {
public:
    // `source` and `sink` name the buffer filters ("buffer", "abuffer"); `sourceArguments` are
    // the source's; `constrainSink` sets the sink's options (formats) before the graph is
    // configured. Throws MediaError "Can not set up the filter <name>: <reason>" for an unknown
    // filter or option or a value the filter refuses, and "Can not set up the filters: <reason>"
    // when the chain does not configure.
    FilterGraph(const std::string& source, const std::string& sourceArguments,
                const std::vector<FilterStep>& filters, const std::string& sink,
                const std::function<void(AVFilterContext& sink)>& constrainSink);
    FilterGraph(const FilterGraph&) = delete;
    FilterGraph& operator=(const FilterGraph&) = delete;
    ~FilterGraph();

    // Owned by the graph.
    AVFilterContext* source() const;
    AVFilterContext* sink() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
