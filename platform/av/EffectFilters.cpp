#include "platform/av/EffectFilters.h"

#include "platform/av/MediaError.h"

extern "C" {
#include <libavfilter/avfilter.h>
}

namespace Velmor::AV {

std::vector<std::string> findEffectFilters() {
    static const std::vector<std::string> wanted{"buffer",  "buffersink",  "drawtext",
                                                 "abuffer", "abuffersink", "volume",
                                                 "afade",   "ebur128",     "aresample"};
    for (const std::string& name : wanted) {
        if (!avfilter_get_by_name(name.c_str()))
            throw MediaError("The media libraries have no filter " + name);
    }
    return wanted;
}

} // namespace Velmor::AV
