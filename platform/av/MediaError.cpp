#include "platform/av/MediaError.h"

extern "C" {
#include <libavutil/error.h>
}

namespace Velmor::AV {

std::string errorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

int check(int result, const std::string& what) {
    if (result < 0)
        throw MediaError(what + ": " + errorText(result));
    return result;
}

} // namespace Velmor::AV
