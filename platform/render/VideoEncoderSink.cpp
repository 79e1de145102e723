#include "platform/render/VideoEncoderSink.h"

#include "platform/av/Encoder.h"
#include "platform/av/Frame.h"
#include "platform/render/EncodedStream.h"
#include "platform/render/WriterResult.h"

namespace Velmor::Render {

class VideoEncoderSink::Private {
public:
    Private(SharedMuxer& muxer, const VideoFormat& format, const VideoEncoding& encoding)
        : stream(muxer)
        , format(format)
        , encoding(encoding) {}

    EncodedStream stream;
    const VideoFormat format;
    const VideoEncoding encoding;
    int width = 0;
    int height = 0;

    void open(int pictureWidth, int pictureHeight, int pixelFormat) {
        AV::VideoEncoderSettings settings;
        settings.encoder = encoding.encoder;
        settings.width = width = pictureWidth;
        settings.height = height = pictureHeight;
        settings.pixelFormat = pixelFormat;
        settings.timeBase = format.timeBase;
        settings.frameRate = format.frameRate;
        settings.rateControl = encoding.rateControl;
        settings.bitRate = encoding.bitRate;
        settings.globalHeader = stream.wantsGlobalHeader();
        settings.stitchable = encoding.stitchable;
        stream.open(AV::Encoder::video(settings));
    }
};

VideoEncoderSink::VideoEncoderSink(SharedMuxer& muxer, const VideoFormat& format,
                                   const VideoEncoding& encoding)
    : d(std::make_unique<Private>(muxer, format, encoding)) {}

VideoEncoderSink::~VideoEncoderSink() = default;

EncodedStream& VideoEncoderSink::stream() {
    return d->stream;
}

bool VideoEncoderSink::write(AV::Frame& frame) {
    if (!d->stream.isOpen())
        d->open(frame.width(), frame.height(), frame.format());
    d->stream.encode(&frame);
    return true;
}

void VideoEncoderSink::close() {
    if (!d->stream.isOpen())
        d->open(d->format.width, d->format.height, d->format.pixelFormat);
    d->stream.encode(nullptr);
}

WrittenStream VideoEncoderSink::written() const {
    WrittenStream written = d->stream.written();
    written.width = d->width;
    written.height = d->height;
    return written;
}

} // namespace Velmor::Render
