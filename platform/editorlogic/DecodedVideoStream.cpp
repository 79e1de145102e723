#include "platform/editorlogic/DecodedVideoStream.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/editorlogic/VideoStreamCutter.h"

namespace Media {

class DecodedVideoStream::Private {
public:
    Private(std::unique_ptr<Velmor::AV::Demuxer> demuxer,
            std::unique_ptr<Velmor::AV::Decoder> decoder)
        : path(QString::fromStdString(demuxer->path()))
        , demuxer(std::move(demuxer))
        , decoder(std::move(decoder)) {}

    QString path;
    std::unique_ptr<Velmor::AV::Demuxer> demuxer;
    std::unique_ptr<Velmor::AV::Decoder> decoder;
    // Last, so that it goes first: it borrows the demuxer and the decoder.
    std::unique_ptr<VideoStreamCutter> cutter;
};

DecodedVideoStream::DecodedVideoStream(std::unique_ptr<Velmor::AV::Demuxer> demuxer,
                                       std::unique_ptr<Velmor::AV::Decoder> decoder)
    : d(std::make_unique<Private>(std::move(demuxer), std::move(decoder))) {}

DecodedVideoStream::~DecodedVideoStream() = default;

const QString& DecodedVideoStream::path() const {
    return d->path;
}

Velmor::AV::Demuxer& DecodedVideoStream::demuxer() const {
    return *d->demuxer;
}

Velmor::AV::Decoder& DecodedVideoStream::decoder() const {
    return *d->decoder;
}

VideoStreamCutter& DecodedVideoStream::cutter() const {
    return *d->cutter;
}

void DecodedVideoStream::setCutter(std::unique_ptr<VideoStreamCutter> cutter) {
    d->cutter = std::move(cutter);
}

} // namespace Media
