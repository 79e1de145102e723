#include "platform/av/LogBridge.h"

#include <cstdarg>
#include <cstdio>
#include <glog/logging.h>
#include <mutex>
#include <string>

extern "C" {
#include <libavutil/log.h>
}

namespace Velmor::AV {
namespace {

void forward(void* context, int level, const char* format, va_list arguments) {
    if (level > AV_LOG_WARNING || level > av_log_get_level())
        return;
    char line[1024];
    int prefix = 1;
    av_log_format_line2(context, level, format, arguments, line, sizeof line, &prefix);
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    if (text.empty())
        return;
    if (level <= AV_LOG_ERROR)
        LOG(ERROR) << text;
    else
        LOG(WARNING) << text;
}

} // namespace

void installLogBridge() {
    static std::once_flag installed;
    std::call_once(installed, [] { av_log_set_callback(&forward); });
}

} // namespace Velmor::AV
