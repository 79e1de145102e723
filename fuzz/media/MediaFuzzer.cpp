#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/MediaLibraries.h"
#include "platform/proc/Resizer.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

extern "C" {
#include <libavutil/log.h>
#include <libavutil/pixfmt.h>
}

namespace {

// Enough frames to reach past the first key frame of the corpus's clips, few enough that one
// input stays fast.
constexpr int framesPerStream = 12;

// The demuxer reads paths, so each input goes to one scratch file of this process.
const std::string& scratchPath() {
    static const std::string path = [] {
        char name[] = "/tmp/media-fuzz-XXXXXX";
        const int descriptor = mkstemp(name);
        if (descriptor < 0)
            std::abort();
        close(descriptor);
        return std::string(name);
    }();
    return path;
}

void decodeSome(Velmor::AV::Demuxer& demuxer, int streamIndex, bool resize) {
    Velmor::AV::Decoder decoder(demuxer, streamIndex, 1);
    Velmor::AV::Frame frame;
    Velmor::Proc::SettingsResizer settings;
    settings.width = 17;
    settings.height = 9;
    settings.mode = Velmor::Proc::SettingsResizer::Fill;
    settings.pixelFormat = AV_PIX_FMT_RGB24;
    Velmor::Proc::Resizer resizer(settings, 1);
    for (int frames = 0; frames < framesPerStream && decoder.decodeNext(demuxer, frame); ++frames) {
        if (resize && frame.width() > 0 && frame.height() > 0)
            resizer.Resize(frame);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    av_log_set_level(AV_LOG_QUIET);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool opened = (Velmor::AV::MediaLibraries::open(VELMOR_MEDIA_MODULE), true);
    (void)opened;
    std::FILE* file = std::fopen(scratchPath().c_str(), "wb");
    if (!file)
        std::abort();
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    try {
        Velmor::AV::Demuxer demuxer(scratchPath());
        const int video = demuxer.bestStream("video");
        const int audio = demuxer.bestStream("audio");
        if (video >= 0)
            decodeSome(demuxer, video, true);
        if (audio >= 0) {
            demuxer.seek(audio, 0);
            decodeSome(demuxer, audio, false);
        }
    } catch (const Velmor::AV::MediaError&) {
    }
    return 0;
}
