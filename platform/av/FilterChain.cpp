#include "platform/av/FilterChain.h"

#include "platform/av/FilterGraph.h"
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

std::string bufferArguments(Size size, int pixelFormat) {
    return "video_size=" + std::to_string(size.width) + "x" + std::to_string(size.height)
           + ":pix_fmt=" + std::to_string(pixelFormat) + ":time_base=1/1:pixel_aspect=1/1";
}

} // namespace

class FilterChain::Private {
public:
    Private(Size size, int pixelFormat, const std::vector<FilterStep>& filters,
            int outputPixelFormat)
        : size(size)
        , pixelFormat(pixelFormat)
        , graph("buffer", bufferArguments(size, pixelFormat), filters, "buffersink",
                [outputPixelFormat](AVFilterContext& sink) {
                    const int formats[] = {outputPixelFormat, AV_PIX_FMT_NONE};
                    check(av_opt_set_int_list(&sink, "pix_fmts", formats, AV_PIX_FMT_NONE,
                                              AV_OPT_SEARCH_CHILDREN),
                          "Can not set up the filter buffersink");
                }) {}

    const Size size;
    const int pixelFormat;
    FilterGraph graph;
    std::int64_t nextTimestamp = 0;
};

FilterChain::FilterChain(Size size, int pixelFormat, const std::vector<FilterStep>& filters,
                         int outputPixelFormat)
    : d(std::make_unique<Private>(size, pixelFormat, filters, outputPixelFormat)) {}

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
    check(av_buffersrc_add_frame_flags(d->graph.source(), input.get(), 0),
          "Can not filter a picture");
    Frame output;
    check(av_buffersink_get_frame(d->graph.sink(), output.get()), "Can not filter a picture");
    return output;
}

} // namespace Velmor::AV
