#include "platform/av/ImageWriter.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"

#include <QTemporaryDir>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

extern "C" {
#include <libavutil/frame.h>
}

using EditorService::Testing::FailedWith;
using Velmor::AV::Decoder;
using Velmor::AV::Demuxer;
using Velmor::AV::Frame;
using Velmor::AV::MediaError;
using Velmor::AV::writePng;

namespace {

Frame paintedPicture() {
    Frame picture = Frame::picture(5, 4, AV_PIX_FMT_RGB24);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 5; ++x) {
            std::uint8_t* pixel = picture->data[0] + y * picture->linesize[0] + x * 3;
            pixel[0] = static_cast<std::uint8_t>(x * 50);
            pixel[1] = static_cast<std::uint8_t>(y * 60);
            pixel[2] = 200;
        }
    }
    return picture;
}

// Writes through a descriptor of a new file at the path.
void writePngAt(const Frame& picture, const std::string& path, int mode = O_WRONLY) {
    const int descriptor = ::open(path.c_str(), mode | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    ASSERT_GE(descriptor, 0) << path;
    try {
        writePng(picture, descriptor, path);
    } catch (...) {
        ::close(descriptor);
        throw;
    }
    ::close(descriptor);
}

} // namespace

TEST(ImageWriterTest, WritesAPngThatReadsBackToTheSamePixels) {
    const QTemporaryDir directory;
    const std::string path = directory.filePath("picture.png").toStdString();
    const Frame picture = paintedPicture();
    writePngAt(picture, path);

    Demuxer demuxer(path);
    EXPECT_EQ(demuxer.info().streams.at(0).codec, "png");
    Decoder decoder(demuxer, 0);
    Frame read;
    ASSERT_TRUE(decoder.decodeNext(demuxer, read));
    ASSERT_EQ(read.format(), AV_PIX_FMT_RGB24);
    ASSERT_EQ(read.width(), 5);
    ASSERT_EQ(read.height(), 4);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 15; ++x) {
            EXPECT_EQ(read->data[0][y * read->linesize[0] + x],
                      picture->data[0][y * picture->linesize[0] + x]);
        }
    }
}

TEST(ImageWriterTest, ADescriptorThatCanNotBeWrittenFailsWithTheSystemsReason) {
    const QTemporaryDir directory;
    const std::string path = directory.filePath("picture.png").toStdString();
    EXPECT_THAT([&] { writePngAt(paintedPicture(), path, O_RDONLY); },
                FailedWith<MediaError>("Can not write " + path + ": Bad file descriptor"));
}

TEST(ImageWriterTest, APictureThatIsNotRgbIsRefused) {
    const QTemporaryDir directory;
    const std::string path = directory.filePath("picture.png").toStdString();
    EXPECT_THAT([&] { writePngAt(Frame::picture(4, 4, AV_PIX_FMT_YUV420P), path); },
                FailedWith<MediaError>("Can not write " + path + ": the picture is not RGB24"));
}
