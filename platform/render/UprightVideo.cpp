#include "platform/render/UprightVideo.h"

#include "platform/av/Frame.h"
#include "platform/av/Upright.h"

namespace Velmor::Render {
class UprightVideo::Private {
public:
    explicit Private(VideoSource& source)
        : source(source)
        , upright({source.format().width, source.format().height}, source.format().pixelFormat,
                  source.format().rotation, source.format().sampleAspectRatio,
                  source.format().mirrored) {}

    VideoSource& source;
    AV::Upright upright;
    AV::Frame picture;
};

UprightVideo::UprightVideo(VideoSource& source)
    : d(std::make_unique<Private>(source)) {}

UprightVideo::~UprightVideo() = default;

VideoFormat UprightVideo::format() const {
    VideoFormat format = d->source.format();
    format.width = d->upright.size().width;
    format.height = d->upright.size().height;
    format.rotation = 0;
    format.mirrored = false;
    format.sampleAspectRatio = {1, 1};
    return format;
}

bool UprightVideo::next(AV::Frame& frame) {
    if (!d->source.next(d->picture))
        return false;
    frame = d->upright.run(d->picture);
    // The source's buffers go back to it now rather than at the next picture.
    d->picture.reset();
    return true;
}

void UprightVideo::finish() {
    d->source.finish();
}

} // namespace Velmor::Render
