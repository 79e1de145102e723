#include "platform/av/Packet.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/packet.h>
}

using Velmor::AV::Packet;

TEST(PacketTest, ANewPacketIsEmpty) {
    const Packet packet;
    ASSERT_NE(packet.get(), nullptr);
    EXPECT_EQ(packet->size, 0);
}

TEST(PacketTest, ResetDropsTheDataAndKeepsThePacket) {
    Packet packet;
    ASSERT_EQ(av_new_packet(packet.get(), 16), 0);
    packet->stream_index = 3;
    AVPacket* const raw = packet.get();
    EXPECT_EQ(packet.streamIndex(), 3);
    packet.reset();
    EXPECT_EQ(packet.get(), raw);
    EXPECT_EQ(packet->size, 0);
}
