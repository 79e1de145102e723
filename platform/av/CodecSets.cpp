#include "platform/av/CodecSets.h"

#include "platform/av/MediaError.h"

#include <utility>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Velmor::AV {

DecodingSet findDecoding() {
    DecodingSet set;
    void* state = nullptr;
    while (av_demuxer_iterate(&state))
        ++set.demuxers;
    state = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&state)) {
        if (av_codec_is_decoder(codec))
            ++set.decoders;
    }
    if (set.demuxers == 0 || set.decoders == 0)
        throw MediaError("The media libraries have no demuxer or no decoder");
    return set;
}

std::map<std::string, std::string> findEncoders() {
    static const std::vector<std::pair<std::string, std::string>> wanted{
        {"CODEC_ID_H264", "libx264"},
        {"CODEC_ID_HEVC", "libx265"},
        {"CODEC_ID_AAC", "aac"},
        {"CODEC_ID_PNG", "png"},
        {"CODEC_ID_MJPEG", "mjpeg"}};
    std::map<std::string, std::string> found;
    for (const auto& [codec, encoder] : wanted) {
        if (avcodec_find_encoder_by_name(encoder.c_str()))
            found.emplace(codec, encoder);
    }
    return found;
}

} // namespace Velmor::AV
