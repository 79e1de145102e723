#include "platform/av/Scaler.h"

#include "platform/av/MediaError.h"
#include "platform/av/Picture.h"

#include <new>
#include <tuple>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace Velmor::AV {
namespace {

struct FreeContext {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
using ContextPointer = std::unique_ptr<SwsContext, FreeContext>;

// What a context is made for; any change needs a new one.
struct Geometry {
    int sourceWidth = 0;
    int sourceHeight = 0;
    int sourceFormat = -1;
    bool sourceFullRange = false;
    int targetWidth = 0;
    int targetHeight = 0;
    int targetFormat = -1;
    bool targetFullRange = false;

    auto tied() const {
        return std::tie(sourceWidth, sourceHeight, sourceFormat, sourceFullRange, targetWidth,
                        targetHeight, targetFormat, targetFullRange);
    }
    bool operator==(const Geometry& other) const { return tied() == other.tied(); }

    std::string text() const {
        return std::to_string(sourceWidth) + "x" + std::to_string(sourceHeight) + " "
               + pixelFormatName(sourceFormat) + " to " + std::to_string(targetWidth) + "x"
               + std::to_string(targetHeight) + " " + pixelFormatName(targetFormat);
    }
};

void setOption(SwsContext* context, const char* name, std::int64_t value) {
    check(av_opt_set_int(context, name, value, 0),
          std::string("Can not set the scaler's option ") + name);
}

} // namespace

class Scaler::Private {
public:
    explicit Private(int threads)
        : requestedThreads(threads) {}

    // sws_getCachedContext would do for the geometry but makes its new contexts with one
    // thread, dropping the "threads" option; so the context is kept and remade here.
    SwsContext* contextFor(const Geometry& wanted) {
        if (context && geometry == wanted)
            return context.get();
        context.reset();
        // libswscale 6 leaks a slice thread's context when sws_init_context refuses a format,
        // so formats are refused before, with the same reason.
        if (!sws_isSupportedInput(static_cast<AVPixelFormat>(wanted.sourceFormat))
            || !sws_isSupportedOutput(static_cast<AVPixelFormat>(wanted.targetFormat)))
            check(AVERROR(EINVAL), "Can not set up scaling from " + wanted.text());
        ContextPointer made(sws_alloc_context());
        if (!made)
            throw std::bad_alloc();
        setOption(made.get(), "srcw", wanted.sourceWidth);
        setOption(made.get(), "srch", wanted.sourceHeight);
        setOption(made.get(), "src_format", wanted.sourceFormat);
        setOption(made.get(), "src_range", wanted.sourceFullRange);
        setOption(made.get(), "dstw", wanted.targetWidth);
        setOption(made.get(), "dsth", wanted.targetHeight);
        setOption(made.get(), "dst_format", wanted.targetFormat);
        setOption(made.get(), "dst_range", wanted.targetFullRange);
        setOption(made.get(), "sws_flags", SWS_BICUBIC);
        setOption(made.get(), "threads", requestedThreads);
        check(sws_init_context(made.get(), nullptr, nullptr),
              "Can not set up scaling from " + wanted.text());
        std::int64_t threadsTaken = 1;
        check(av_opt_get_int(made.get(), "threads", 0, &threadsTaken),
              "Can not read the scaler's threads");
        context = std::move(made);
        geometry = wanted;
        contextThreads = static_cast<int>(threadsTaken);
        ++contextsCreated;
        return context.get();
    }

    const int requestedThreads;
    ContextPointer context;
    Geometry geometry;
    int contextThreads = 0;
    int contextsCreated = 0;
    // Reused for every call: they only borrow the pictures' buffers.
    Frame sourceView;
    Frame targetView;
};

Scaler::Scaler(int threads)
    : d(std::make_unique<Private>(threads)) {}

Scaler::~Scaler() = default;
Scaler::Scaler(Scaler&&) noexcept = default;
Scaler& Scaler::operator=(Scaler&&) noexcept = default;

void Scaler::scale(const Frame& source, const Rect& sourceRegion, Frame& target,
                   const Rect& targetRegion) {
    showRegion(d->sourceView, source, sourceRegion);
    showRegion(d->targetView, target, targetRegion);
    // The frames' own range decides; libswscale adds the yuvj and grey formats' by itself.
    const Geometry wanted{sourceRegion.width, sourceRegion.height,
                          source.format(),    source->color_range == AVCOL_RANGE_JPEG,
                          targetRegion.width, targetRegion.height,
                          target.format(),    target->color_range == AVCOL_RANGE_JPEG};
    SwsContext* context = d->contextFor(wanted);
    const int scaled = sws_scale_frame(context, d->targetView.get(), d->sourceView.get());
    d->sourceView.reset();
    d->targetView.reset();
    check(scaled, "Can not scale " + wanted.text());
}

void Scaler::scale(const Frame& source, Frame& target) {
    scale(source, Rect{0, 0, source.width(), source.height()}, target,
          Rect{0, 0, target.width(), target.height()});
}

int Scaler::threads() const {
    return d->contextThreads;
}

int Scaler::contextsCreated() const {
    return d->contextsCreated;
}

} // namespace Velmor::AV
