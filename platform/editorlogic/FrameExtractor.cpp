#include "platform/editorlogic/FrameExtractor.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/ImageWriter.h"
#include "platform/av/OutputFormats.h"
#include "platform/av/Picture.h"
#include "platform/av/Upright.h"
#include "platform/editorlogic/DecodedVideoStream.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/editorlogic/ThumbnailTaskProvider.h"
#include "platform/editorlogic/VideoStreamCutter.h"
#include "platform/engine/CoreManager.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/foundation/OutputFile.h"
#include "platform/proc/Resizer.h"

#include <algorithm>
#include <stdexcept>

namespace Thumbnail {

FrameExtractor::FrameExtractor() {
    Velmor::Testing::Probe::hit("Thumbnail::FrameExtractor::FrameExtractor");
    Velmor::Testing::CallLog::record("Thumbnail::FrameExtractor::FrameExtractor");
}

FrameExtractor::~FrameExtractor() {
    Velmor::Testing::CallLog::record("Thumbnail::FrameExtractor::~FrameExtractor");
}

void FrameExtractor::addProvider(const std::shared_ptr<TaskProvider>& provider) {
    if (!provider)
        return;
    std::lock_guard<std::mutex> lock(providersMutex);
    if (std::find(providers.begin(), providers.end(), provider) != providers.end())
        return;
    providers.push_back(provider);
}

void FrameExtractor::removeProvider(const std::shared_ptr<TaskProvider>& provider) {
    std::lock_guard<std::mutex> lock(providersMutex);
    providers.erase(std::remove(providers.begin(), providers.end(), provider), providers.end());
}

void FrameExtractor::process() {
    std::vector<std::shared_ptr<TaskProvider>> snapshot;
    {
        // Copied, so that the tasks run unlocked and may add or remove providers themselves.
        std::lock_guard<std::mutex> lock(providersMutex);
        snapshot = providers;
    }
    for (const auto& provider : snapshot) {
        while (auto task = provider->takeTask())
            task();
    }
}

Result FrameExtractor::extract(const Request& request) {
    const std::string output = request.output.toStdString();
    Velmor::Core::CoreManager::Instance().EncoderFor(
        Velmor::AV::pictureCodec(Velmor::AV::pictureFormatFor(output)));
    auto* streams = Media::StreamProvider::instance();
    if (!streams)
        throw std::logic_error("Can not extract a thumbnail: no stream provider runs");
    // Made before anything is decoded: a folder that is missing or can not be written fails here.
    using Existing = Velmor::OutputFile::Existing;
    Velmor::OutputFile file(output, request.overwrite ? Existing::Replace : Existing::Keep);
    const auto stream = streams->videoStream(request.path);
    const Velmor::AV::Frame& decoded = stream->cutter().frameAt(request.atMilliseconds);
    const Velmor::AV::StreamInfo& info =
        stream->demuxer().info().streams.at(stream->decoder().streamIndex());
    Velmor::AV::Upright upright({decoded.width(), decoded.height()}, decoded.format(),
                                info.rotation, info.sampleAspectRatio, info.mirrored);
    const Velmor::AV::Frame frame = upright.run(decoded);
    const bool original = request.width < 1 || request.height < 1;
    Velmor::Proc::SettingsResizer settings;
    settings.width = original ? frame.width() : request.width;
    settings.height = original ? frame.height() : request.height;
    settings.mode = request.mode;
    settings.pixelFormat = Velmor::AV::pixelFormat("rgb24");
    const Velmor::AV::Frame picture = Velmor::Proc::Resizer(settings).Resize(frame);
    Velmor::AV::writePicture(picture, file.descriptor(), output);
    file.commit();
    return Result{stream->cutter().frameMilliseconds(), settings.width, settings.height};
}

} // namespace Thumbnail
