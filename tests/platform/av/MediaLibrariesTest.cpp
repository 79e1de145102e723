#include "platform/av/MediaLibraries.h"
#include "platform/av/CodecSets.h"
#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

using EditorService::Testing::FailedWith;
using Velmor::AV::MediaError;
using Velmor::AV::MediaLibraries;

namespace {

const std::string noTable = TEST_MODULE_DIR "/NoTable.so";
const std::string noFunctions = TEST_MODULE_DIR "/NoFunctions.so";

std::string module(const char* plugin) {
    return std::string(VELMOR_MEDIA_MODULE_DIR "/") + plugin + ".so";
}

} // namespace

// In one test, because the slots once filled stay filled for the process.
TEST(MediaLibrariesTest, TheStagesReachTheLibrariesOnlyOnceAWholeModuleIsOpen) {
    ASSERT_FALSE(MediaLibraries::isOpen());
    const auto unbound = FailedWith<MediaError>(
        "Can not call av_demuxer_iterate: no module on the media libraries is open");
    EXPECT_THAT([] { Velmor::AV::findDecoding(); }, unbound);

    EXPECT_THAT([] { MediaLibraries::open(noFunctions); },
                FailedWith<MediaError>(noFunctions + " lacks av_audio_fifo_alloc"));
    EXPECT_FALSE(MediaLibraries::isOpen());
    EXPECT_THAT([] { Velmor::AV::findDecoding(); }, unbound);

    MediaLibraries::open(module("DecodersFF"));
    EXPECT_TRUE(MediaLibraries::isOpen());
    EXPECT_GT(Velmor::AV::findDecoding().decoders, 0);
    // Another plug-in's module opens too, and changes nothing.
    MediaLibraries::open(module("EncodersFF"));
    EXPECT_EQ(Velmor::AV::findEncoders().at("CODEC_ID_PNG"), "png");
}

TEST(MediaLibrariesTest, AMissingModuleFailsWithTheLoadersReason) {
    EXPECT_THAT([] { MediaLibraries::open("/nonexistent/DecodersFF.so"); },
                FailedWith<MediaError>("/nonexistent/DecodersFF.so: cannot open shared object "
                                       "file: No such file or directory"));
}

TEST(MediaLibrariesTest, AFileThatIsNoModuleFailsWithTheLoadersReason) {
    QTemporaryDir directory;
    const QString path = directory.filePath("EncodersFF.so");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a shared library");
    file.close();
    try {
        MediaLibraries::open(path.toStdString());
        FAIL() << "no failure";
    } catch (const MediaError& error) {
        EXPECT_THAT(error.what(), testing::StartsWith(path.toStdString() + ": "));
    }
}

TEST(MediaLibrariesTest, ALibraryWithoutTheTableIsNoModule) {
    EXPECT_THAT([] { MediaLibraries::open(noTable); },
                FailedWith<MediaError>(noTable + " has no table velmorMediaFunctions"));
}
