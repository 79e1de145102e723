#pragma once

#include <cstdint>
#include <memory>

struct AVPacket;

namespace Velmor::AV {

// One compressed packet of a stream: a move-only owner of an AVPacket.
class Packet {
public:
    Packet();

    AVPacket* get() const { return packet.get(); }
    AVPacket* operator->() const { return packet.get(); }

    int streamIndex() const;
    // In the time base of whoever made it; AV_NOPTS_VALUE when unknown.
    std::int64_t timestamp() const;
    // When it is decoded, in the same time base; AV_NOPTS_VALUE when unknown.
    std::int64_t decodingTimestamp() const;
    // Moves both times by `ticks` of their time base; an unknown one stays unknown.
    void shift(std::int64_t ticks);
    std::int64_t duration() const;
    // Bytes of compressed data.
    int size() const;
    // Drops the data, keeping the AVPacket for the next read.
    void reset();

private:
    struct Free {
        void operator()(AVPacket* packet) const;
    };
    std::unique_ptr<AVPacket, Free> packet;
};

} // namespace Velmor::AV
