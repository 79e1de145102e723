#include "platform/av/Picture.h"
#include "platform/render/Cancelled.h"
#include "platform/render/ClipSource.h"
#include "platform/render/ResizedVideo.h"
#include "platform/render/Runner.h"
#include "platform/render/Writer.h"
#include "tests/platform/render/Ffprobe.h"
#include "tests/support/NewFile.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

// A clip rendered into a writer the way an export wires it: the pictures decoded, resized and
// encoded each on a thread of its own, the sound on another, one demuxer and one muxer shared.

using EditorService::Testing::FailedWith;
using EditorService::Testing::ffprobe;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::NewFile;
using namespace Velmor::Render;

namespace {

class Pipeline {
public:
    Pipeline(const std::string& input, const std::string& output)
        : file(output)
        , clip(settings(input), runner.stop())
        , decoded(runner.boundary(*clip.video(), 4))
        , resized(decoded, resizing())
        , pictures(runner.boundary(resized, 4))
        , writer(file.descriptor, output, "mp4") {
        runner.connect(pictures, writer.addVideo(pictures.format(), {"libx264", {}, 0}));
        if (const auto input = clip.inputAudio()) {
            const AudioEncoding aac{"aac", 96000};
            AudioSource& sound = *clip.audio(Writer::audioFormat(aac, *input));
            runner.connect(sound, writer.addAudio(sound.format(), aac));
        }
    }

    static ClipSettings settings(const std::string& input) {
        ClipSettings settings;
        settings.path = mediaFixture(input);
        return settings;
    }

    static Velmor::Proc::SettingsResizer resizing() {
        Velmor::Proc::SettingsResizer resize;
        resize.width = 160;
        resize.height = 90;
        resize.pixelFormat = Velmor::AV::pixelFormat("yuv420p");
        return resize;
    }

    NewFile file;
    Runner runner;
    ClipSource clip;
    VideoSource& decoded;
    ResizedVideo resized;
    VideoSource& pictures;
    Writer writer;
};

} // namespace

TEST(PipelineTest, AClipRenderedOnTheRunnersThreadsIsWrittenWhole) {
    QTemporaryDir directory;
    const std::string output = directory.filePath("out.mp4").toStdString();
    Pipeline pipeline("h264_aac.mp4", output);
    pipeline.runner.run();
    const WriterResult result = pipeline.writer.finish();
    EXPECT_EQ(result.streams.at(0).packets, 50);
    const nlohmann::json probed = ffprobe(output);
    ASSERT_EQ(probed["streams"].size(), 2u);
    EXPECT_EQ(probed["streams"][0]["width"], 160);
    EXPECT_EQ(probed["streams"][0]["nb_read_packets"], "50");
    EXPECT_EQ(probed["streams"][1]["codec_name"], "aac");
}

TEST(PipelineTest, ACancelAtTheFirstEncodedFrameEndsEveryThread) {
    QTemporaryDir directory;
    Pipeline pipeline("long.mp4", directory.filePath("out.mp4").toStdString());
    std::int64_t seen = 0;
    pipeline.writer.onEncoded([&](std::int64_t packets, std::int64_t) {
        seen = packets;
        pipeline.runner.cancel();
    });
    EXPECT_THAT([&] { pipeline.runner.run(); }, FailedWith<Cancelled>("Render cancelled"));
    // Within one frame's work: long.mp4 has 1500.
    EXPECT_GE(seen, 1);
    EXPECT_LT(seen, 100);
}
