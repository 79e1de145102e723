#include "platform/project/MediaProber.h"

#include "platform/av/Demuxer.h"

namespace Project {
namespace {

// Pictures come through the image demuxers: "image2", "png_pipe", "jpeg_pipe", ...
bool isPictureFormat(const std::string& format) {
    const std::string pipe = "_pipe";
    return format == "image2"
           || (format.size() > pipe.size()
               && format.compare(format.size() - pipe.size(), pipe.size(), pipe) == 0);
}

} // namespace

IMediaProber::~IMediaProber() = default;

MediaFacts FileProber::probe(const QString& file) const {
    const Velmor::AV::Demuxer demuxer(file.toStdString());
    const Velmor::AV::MediaInfo& info = demuxer.info();
    MediaFacts facts;
    facts.durationMs = info.durationMs;
    facts.isStill = isPictureFormat(info.format);
    const int video = demuxer.bestStream("video");
    facts.hasVideo = video >= 0;
    facts.hasAudio = demuxer.bestStream("audio") >= 0;
    if (!facts.hasVideo)
        return facts;
    for (const Velmor::AV::StreamInfo& stream : info.streams) {
        if (stream.index != video)
            continue;
        facts.width = stream.width;
        facts.height = stream.height;
    }
    facts.frameRate = demuxer.frameRate(video);
    return facts;
}

} // namespace Project
