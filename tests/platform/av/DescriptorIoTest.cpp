#include "platform/av/DescriptorIo.h"

#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"

#include <QTemporaryDir>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

extern "C" {
#include <libavformat/avformat.h>
}

using EditorService::Testing::FailedWith;
using Velmor::AV::DescriptorIo;
using Velmor::AV::MediaError;

namespace {

struct FreeContext {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};

class DescriptorIoTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(directory.isValid());
        descriptor = ::open(directory.filePath("out.bin").toLocal8Bit().constData(),
                            O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        ASSERT_GE(descriptor, 0);
        AVFormatContext* made = nullptr;
        ASSERT_GE(avformat_alloc_output_context2(&made, nullptr, "mp4", "out.mp4"), 0);
        context.reset(made);
    }
    void TearDown() override {
        context.reset();
        ::close(descriptor);
    }

    std::string readAll() const {
        std::string bytes(4096, '\0');
        const ssize_t got = ::pread(descriptor, &bytes[0], bytes.size(), 0);
        bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        return bytes;
    }

    QTemporaryDir directory;
    int descriptor = -1;
    std::unique_ptr<AVFormatContext, FreeContext> context;
};

} // namespace

TEST_F(DescriptorIoTest, WhatTheContextWritesAndSeeksLandsInTheFile) {
    DescriptorIo io(descriptor, "out.mp4");
    io.attach(*context);
    avio_write(context->pb, reinterpret_cast<const unsigned char*>("hello world"), 11);
    avio_seek(context->pb, 0, SEEK_SET);
    avio_write(context->pb, reinterpret_cast<const unsigned char*>("HELLO"), 5);
    io.flush();
    EXPECT_EQ(readAll(), "HELLO world");
}

TEST_F(DescriptorIoTest, OpeningTheOutputAgainReadsTheSameFileAtAPositionOfItsOwn) {
    DescriptorIo io(descriptor, "out.mp4");
    io.attach(*context);
    avio_write(context->pb, reinterpret_cast<const unsigned char*>("0123456789"), 10);
    io.flush();
    AVIOContext* reader = nullptr;
    ASSERT_EQ(context->io_open(context.get(), &reader, "out.mp4", AVIO_FLAG_READ, nullptr), 0);
    avio_seek(reader, 4, SEEK_SET);
    unsigned char read[3] = {};
    EXPECT_EQ(avio_read(reader, read, 3), 3);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(read), 3), "456");
    EXPECT_EQ(avio_size(reader), 10);
    EXPECT_EQ(context->io_close2(context.get(), reader), 0);
    avio_write(context->pb, reinterpret_cast<const unsigned char*>("!"), 1);
    io.flush();
    EXPECT_EQ(readAll(), "0123456789!");
}

TEST_F(DescriptorIoTest, AnyOtherNameOrWritingAgainIsRefused) {
    DescriptorIo io(descriptor, "out.mp4");
    io.attach(*context);
    AVIOContext* other = nullptr;
    EXPECT_EQ(context->io_open(context.get(), &other, "/etc/passwd", AVIO_FLAG_READ, nullptr),
              AVERROR(EPERM));
    EXPECT_EQ(context->io_open(context.get(), &other, "out.mp4", AVIO_FLAG_WRITE, nullptr),
              AVERROR(EPERM));
    EXPECT_EQ(other, nullptr);
}

TEST_F(DescriptorIoTest, AFailedWriteIsToldAtTheFlushWithTheSystemsReason) {
    const int readOnly =
        ::open(directory.filePath("out.bin").toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(readOnly, 0);
    {
        DescriptorIo io(readOnly, "out.mp4");
        io.attach(*context);
        avio_write(context->pb, reinterpret_cast<const unsigned char*>("x"), 1);
        EXPECT_THAT([&] { io.flush(); },
                    FailedWith<MediaError>("Can not write out.mp4: Bad file descriptor"));
        context.reset();
    }
    ::close(readOnly);
}
