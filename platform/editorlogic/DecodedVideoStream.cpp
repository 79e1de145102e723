#include "platform/editorlogic/DecodedVideoStream.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/editorlogic/VideoStreamCutter.h"

namespace Media {

DecodedVideoStream::DecodedVideoStream(std::unique_ptr<Velmor::AV::Demuxer> demuxer,
                                       std::unique_ptr<Velmor::AV::Decoder> decoder)
    : m_path(QString::fromStdString(demuxer->path()))
    , m_demuxer(std::move(demuxer))
    , m_decoder(std::move(decoder)) {}

DecodedVideoStream::~DecodedVideoStream() = default;

const QString& DecodedVideoStream::path() const {
    return m_path;
}

Velmor::AV::Demuxer& DecodedVideoStream::demuxer() const {
    return *m_demuxer;
}

Velmor::AV::Decoder& DecodedVideoStream::decoder() const {
    return *m_decoder;
}

VideoStreamCutter& DecodedVideoStream::cutter() const {
    return *m_cutter;
}

void DecodedVideoStream::setCutter(std::unique_ptr<VideoStreamCutter> cutter) {
    m_cutter = std::move(cutter);
}

} // namespace Media
