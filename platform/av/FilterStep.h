#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Velmor::AV {

// One libavfilter filter with its options, each set by name through the filter's own options,
// so that a text (drawtext's "text") needs no escaping for a filter graph string.
struct FilterStep {
    std::string name;
    std::vector<std::pair<std::string, std::string>> options;
};

} // namespace Velmor::AV
