#include "platform/av/Packet.h"

#include <new>

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/avutil.h>
}

namespace Velmor::AV {

void Packet::Free::operator()(AVPacket* packet) const {
    av_packet_free(&packet);
}

Packet::Packet()
    : packet(av_packet_alloc()) {
    if (!packet)
        throw std::bad_alloc();
}

int Packet::streamIndex() const {
    return packet->stream_index;
}

std::int64_t Packet::timestamp() const {
    return packet->pts;
}

std::int64_t Packet::decodingTimestamp() const {
    return packet->dts;
}

void Packet::shift(std::int64_t ticks) {
    if (packet->pts != AV_NOPTS_VALUE)
        packet->pts += ticks;
    if (packet->dts != AV_NOPTS_VALUE)
        packet->dts += ticks;
}

std::int64_t Packet::duration() const {
    return packet->duration;
}

int Packet::size() const {
    return packet->size;
}

void Packet::reset() {
    av_packet_unref(packet.get());
}

} // namespace Velmor::AV
