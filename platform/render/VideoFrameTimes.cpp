#include "platform/render/VideoFrameTimes.h"

#include "platform/av/Demuxer.h"
#include "platform/av/Packet.h"
#include "platform/av/Rational.h"

#include <algorithm>

namespace Velmor::Render {

std::vector<std::int64_t> videoFrameTimes(const std::string& path) {
    AV::Demuxer demuxer(path);
    const int stream = demuxer.bestStream("video");
    std::vector<std::int64_t> times;
    if (stream < 0)
        return times;
    demuxer.readOnly(stream);
    const AV::Rational microseconds{1, 1000000};
    const AV::Rational timeBase = demuxer.timeBase(stream);
    const std::int64_t origin = demuxer.origin();
    AV::Packet packet;
    while (demuxer.read(packet)) {
        if (packet.streamIndex() != stream || packet.timestamp() == AV::noTimestamp)
            continue;
        times.push_back(AV::rescale(packet.timestamp(), timeBase, microseconds) - origin);
    }
    std::sort(times.begin(), times.end());
    return times;
}

} // namespace Velmor::Render
