#include "platform/av/StreamHeader.h"

#include "platform/av/Demuxer.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Velmor::AV {

std::string streamHeader(const Demuxer& source, int index) {
    const AVCodecParameters& parameters = *source.stream(index)->codecpar;
    std::string header = avcodec_get_name(parameters.codec_id);
    for (const int value :
         {parameters.width, parameters.height, parameters.format, parameters.profile,
          parameters.level, parameters.sample_rate, parameters.ch_layout.nb_channels}) {
        header += ' ' + std::to_string(value);
    }
    header += '\n';
    if (parameters.extradata)
        header.append(reinterpret_cast<const char*>(parameters.extradata),
                      static_cast<std::size_t>(parameters.extradata_size));
    return header;
}

} // namespace Velmor::AV
