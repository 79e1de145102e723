#include "platform/av/Packet.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/avutil.h>
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

TEST(PacketTest, ShiftMovesBothTimesAndLeavesAnUnknownOneUnknown) {
    Packet packet;
    packet->pts = 100;
    packet->dts = 90;
    packet.shift(1000);
    EXPECT_EQ(packet.timestamp(), 1100);
    EXPECT_EQ(packet.decodingTimestamp(), 1090);
    packet->dts = AV_NOPTS_VALUE;
    packet.shift(-100);
    EXPECT_EQ(packet.timestamp(), 1000);
    EXPECT_EQ(packet.decodingTimestamp(), AV_NOPTS_VALUE);
}
