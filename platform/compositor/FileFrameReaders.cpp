#include "platform/compositor/FileFrameReaders.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/MediaError.h"
#include "platform/compositor/UprightFrames.h"
#include "platform/editorlogic/VideoStreamCutter.h"

namespace Composition {
namespace {

class FileFrameReader : public IFrameReader {
public:
    FileFrameReader(const QString& file, const FileFrameReaders::Interrupted& interrupted)
        : demuxer(file.toStdString(), interrupted) {
        const int stream = demuxer.bestStream("video");
        if (stream < 0)
            throw Velmor::AV::MediaError("No video stream in " + file.toStdString());
        decoder = std::make_unique<Velmor::AV::Decoder>(demuxer, stream);
        cutter = std::make_unique<Media::VideoStreamCutter>(demuxer, *decoder);
        shown = std::make_unique<UprightFrames>(demuxer.info().streams.at(stream));
    }

    const Velmor::AV::Frame& frameAt(std::int64_t milliseconds) override {
        return shown->upright(cutter->frameAt(milliseconds));
    }

private:
    Velmor::AV::Demuxer demuxer;
    std::unique_ptr<Velmor::AV::Decoder> decoder;
    // Last, so that it goes first: it borrows the demuxer and the decoder.
    std::unique_ptr<Media::VideoStreamCutter> cutter;
    std::unique_ptr<UprightFrames> shown;
};

} // namespace

FileFrameReaders::FileFrameReaders(Interrupted interrupted)
    : interrupted(std::move(interrupted)) {}

std::unique_ptr<IFrameReader> FileFrameReaders::open(const QString& file) {
    return std::make_unique<FileFrameReader>(file, interrupted);
}

} // namespace Composition
