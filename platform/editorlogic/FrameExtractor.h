#pragma once

#include "platform/editorlogic/ThumbnailExtractor.h"

#include <mutex>
#include <vector>

namespace Thumbnail {

// Extracts thumbnails from decoded frames. process() runs every task its providers have now,
// provider by provider in the order they were added. extract() decodes the frame from the
// process's stream provider, so that thumbnails of one file share its cached stream, stands it
// upright in square pixels (its stream's rotation and sample aspect ratio), resizes it by the
// request's mode and writes it as PNG through the engine's "EncodersFF" plug-in, into a
// Velmor::OutputFile: the picture appears at the output whole or not at all.
// Providers may be added and removed from any thread while process() runs on another: process()
// asks the providers there were when it began.
class FrameExtractor : public Extractor {
public:
    FrameExtractor();
    ~FrameExtractor() override;

    void addProvider(const std::shared_ptr<TaskProvider>& provider) override;
    void removeProvider(const std::shared_ptr<TaskProvider>& provider) override;
    void process() override;
    // Throws Velmor::Core::PluginError "Can not encode CODEC_ID_PNG: the plug-in EncodersFF is
    // disabled", what the stream provider and the cutter throw, std::logic_error when no stream
    // provider runs, Velmor::AV::MediaError and Velmor::WriteError "Can not write <output>:
    // <reason>" (before anything is decoded for a folder that is missing or can not be
    // written), and Velmor::OutputExists "Output file exists: <output>" for a file that stands
    // at the output when the picture is ready, unless the request overwrites.
    Result extract(const Request& request) override;

private:
    std::mutex providersMutex;
    std::vector<std::shared_ptr<TaskProvider>> providers;
};

} // namespace Thumbnail
