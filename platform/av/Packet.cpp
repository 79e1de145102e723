#include "platform/av/Packet.h"

#include <new>

extern "C" {
#include <libavcodec/packet.h>
}

namespace Velmor::AV {

void Packet::Free::operator()(AVPacket* packet) const {
    av_packet_free(&packet);
}

Packet::Packet()
    : m_packet(av_packet_alloc()) {
    if (!m_packet)
        throw std::bad_alloc();
}

int Packet::streamIndex() const {
    return m_packet->stream_index;
}

std::int64_t Packet::timestamp() const {
    return m_packet->pts;
}

std::int64_t Packet::duration() const {
    return m_packet->duration;
}

int Packet::size() const {
    return m_packet->size;
}

void Packet::reset() {
    av_packet_unref(m_packet.get());
}

} // namespace Velmor::AV
