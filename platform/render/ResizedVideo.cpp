#include "platform/render/ResizedVideo.h"

#include "platform/av/Frame.h"
#include "platform/proc/Resizer.h"

namespace Velmor::Render {

class ResizedVideo::Private {
public:
    Private(VideoSource& source, const Proc::SettingsResizer& settings, int threads)
        : source(source)
        , resizer(settings, threads) {}

    VideoSource& source;
    Proc::Resizer resizer;
    AV::Frame picture;
};

ResizedVideo::ResizedVideo(VideoSource& source, const Proc::SettingsResizer& settings, int threads)
    : d(std::make_unique<Private>(source, settings, threads)) {}

ResizedVideo::~ResizedVideo() = default;

VideoFormat ResizedVideo::format() const {
    VideoFormat format = d->source.format();
    const Proc::SettingsResizer& settings = d->resizer.settings();
    format.width = settings.width;
    format.height = settings.height;
    if (settings.pixelFormat >= 0)
        format.pixelFormat = settings.pixelFormat;
    return format;
}

bool ResizedVideo::next(AV::Frame& frame) {
    if (!d->source.next(d->picture))
        return false;
    frame = d->resizer.Resize(d->picture);
    frame.setTimestamp(d->picture.timestamp());
    // The source's buffers go back to it now rather than at the next picture.
    d->picture.reset();
    return true;
}

void ResizedVideo::finish() {
    d->source.finish();
}

} // namespace Velmor::Render
