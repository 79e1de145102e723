#pragma once

#include "platform/av/FilterStep.h"
#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"

#include <memory>
#include <vector>

namespace Velmor::AV {

// A chain of libavfilter video filters from one input to one output, for pictures of one size
// and pixel format: each run pushes one picture and takes the one picture that comes out. Made
// for filters that give one picture for each they take (drawtext, scale, format). One thread
// at a time.
class FilterChain {
public:
    // Builds and configures the chain. Throws MediaError "Can not set up the filter <name>:
    // <reason>" for an unknown filter or option or a value the filter refuses, and "Can not set
    // up the filters: <reason>" when the chain does not configure.
    FilterChain(Size size, int pixelFormat, const std::vector<FilterStep>& filters,
                int outputPixelFormat);
    FilterChain(const FilterChain&) = delete;
    FilterChain& operator=(const FilterChain&) = delete;
    ~FilterChain();

    // The picture through the chain. The input is only read. Throws std::invalid_argument for a
    // picture of another size or format, MediaError "Can not filter a picture: <reason>" when
    // the chain gives nothing.
    Frame run(const Frame& picture);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
