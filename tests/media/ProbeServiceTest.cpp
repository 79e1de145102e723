#include "media/ProbeService.h"

#include "platform/av/MediaError.h"
#include "platform/engine/PluginError.h"
#include "service/api/Error.h"
#include "tests/media/MediaServiceFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::ProbeService;
using EditorService::Testing::Collected;
using EditorService::Testing::collectToEnd;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureText;
using Velmor::AV::MediaError;
using Velmor::Core::PluginError;

namespace {

class ProbeServiceTest : public EditorService::Testing::MediaServiceFixture {
protected:
    static std::shared_ptr<Collected> probe(const QString& path) {
        ProbeService service;
        return collectToEnd(service.run(QStringList{"probe", path}));
    }
};

TEST_F(ProbeServiceTest, IsKnownAsProbe) {
    EXPECT_EQ(ProbeService::serviceId(), "probe");
}

TEST_F(ProbeServiceTest, DescribesAFileAsOneValueWithExactlyItsKeys) {
    startProvider();
    const QString path = fixture("h264_aac.mp4");
    const auto collected = probe(path);
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    ASSERT_EQ(collected->values.size(), 1u);
    const nlohmann::json expected{{"probe",
                                   {{"path", path.toStdString()},
                                    {"format", "mov,mp4,m4a,3gp,3g2,mj2"},
                                    {"duration_ms", 2000},
                                    {"bit_rate", 387724},
                                    {"size", 96931},
                                    {"streams",
                                     {{{"index", 0},
                                       {"type", "video"},
                                       {"codec", "h264"},
                                       {"width", 320},
                                       {"height", 240},
                                       {"frame_rate", "25/1"},
                                       {"pixel_format", "yuv420p"},
                                       {"rotation", 0},
                                       {"sample_aspect_ratio", "1:1"}},
                                      {{"index", 1},
                                       {"type", "audio"},
                                       {"codec", "aac"},
                                       {"sample_rate", 44100},
                                       {"channels", 2}}}}}}};
    // Bit rate and size depend on the encoder's build that made the fixture: checked by type,
    // and against ffprobe in the host's tests.
    nlohmann::json value = collected->values[0];
    ASSERT_TRUE(value["probe"]["bit_rate"].is_number_integer());
    ASSERT_TRUE(value["probe"]["size"].is_number_integer());
    EXPECT_GT(value["probe"]["size"].get<long long>(), 0);
    value["probe"]["bit_rate"] = expected["probe"]["bit_rate"];
    value["probe"]["size"] = expected["probe"]["size"];
    EXPECT_EQ(value, expected);
}

TEST_F(ProbeServiceTest, AVideoTellsItsStoredSizeRotationAndPixelShape) {
    startProvider();
    const auto rotated = probe(fixture("rotate90.mp4"));
    ASSERT_EQ(rotated->values.size(), 1u) << failureText(rotated->error);
    const auto& turned = rotated->values[0]["probe"]["streams"][0];
    EXPECT_EQ(turned["width"], 160);
    EXPECT_EQ(turned["height"], 90);
    EXPECT_EQ(turned["rotation"], 90);
    EXPECT_EQ(turned["sample_aspect_ratio"], "1:1");

    const auto anamorphic = probe(fixture("sar_64_45.mp4"));
    ASSERT_EQ(anamorphic->values.size(), 1u) << failureText(anamorphic->error);
    const auto& stretched = anamorphic->values[0]["probe"]["streams"][0];
    EXPECT_EQ(stretched["width"], 180);
    EXPECT_EQ(stretched["height"], 144);
    EXPECT_EQ(stretched["rotation"], 0);
    EXPECT_EQ(stretched["sample_aspect_ratio"], "64:45");
}

TEST_F(ProbeServiceTest, AFileOfAudioOnlyHasAudioKeysOnly) {
    startProvider();
    const auto collected = probe(fixture("tone.wav"));
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    const auto& probed = collected->values[0]["probe"];
    EXPECT_EQ(probed["format"], "wav");
    EXPECT_EQ(probed["duration_ms"], 1000);
    EXPECT_EQ(probed["streams"], nlohmann::json::array({{{"index", 0},
                                                         {"type", "audio"},
                                                         {"codec", "pcm_s16le"},
                                                         {"sample_rate", 44100},
                                                         {"channels", 1}}}));
}

TEST_F(ProbeServiceTest, APictureHasNoBitRate) {
    startProvider();
    const auto collected = probe(fixture("still.png"));
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    const auto& probed = collected->values[0]["probe"];
    EXPECT_EQ(probed["format"], "png_pipe");
    EXPECT_TRUE(probed["bit_rate"].is_null());
    EXPECT_EQ(probed["streams"][0]["width"], 64);
    EXPECT_EQ(probed["streams"][0]["height"], 48);
}

TEST_F(ProbeServiceTest, StreamsNeitherVideoNorAudioHaveIndexTypeAndCodecOnly) {
    startProvider();
    const auto collected = probe(fixture("subtitles.mkv"));
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    const auto& streams = collected->values[0]["probe"]["streams"];
    ASSERT_EQ(streams.size(), 3u);
    EXPECT_EQ(streams[1],
              (nlohmann::json{{"index", 1}, {"type", "subtitle"}, {"codec", "subrip"}}));
    EXPECT_EQ(streams[2], (nlohmann::json{{"index", 2}, {"type", "attachment"}, {"codec", "ttf"}}));
}

TEST_F(ProbeServiceTest, TheRuntimeStartsOnlyWhenTheCommandRunsAndOnlyUpToMedia) {
    startProvider();
    ProbeService service;
    const auto stream = service.run(QStringList{"probe", fixture("noaudio.mp4")});
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
    EXPECT_EQ(countOf("Connection::Synchronizer::Synchronizer"), 0);
    const auto collected = collectToEnd(stream);
    ASSERT_EQ(collected->values.size(), 1u) << failureText(collected->error);
    EXPECT_EQ(countOf("CoreManager::Initialize"), 1);
    EXPECT_EQ(countOf("Connection::Synchronizer::Synchronizer"), 1);
    EXPECT_EQ(countOf("Composition::Controller::Controller"), 0);
}

TEST_F(ProbeServiceTest, EachRequestOfAStreamGivesItsValue) {
    startProvider();
    ProbeService service;
    std::vector<EditorService::ProbeRequest> list(3);
    list[0].path = fixture("h264_aac.mp4");
    list[1].path = fixture("vp9_opus.mkv");
    list[2].path = fixture("clip.mov");
    const auto collected = collectToEnd(service.run(EditorService::Testing::each(list)));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    ASSERT_EQ(collected->values.size(), 3u);
    std::vector<std::string> formats;
    for (const auto& value : collected->values)
        formats.push_back(value["probe"]["format"]);
    std::sort(formats.begin(), formats.end());
    EXPECT_EQ(formats, (std::vector<std::string>{"matroska,webm", "mov,mp4,m4a,3gp,3g2,mj2",
                                                 "mov,mp4,m4a,3gp,3g2,mj2"}));
}

TEST_F(ProbeServiceTest, AMissingFileFailsWithMediaErrorNamingItAndTheLibrarysReason) {
    startProvider();
    const QString path = scratchFile("missing.mp4");
    const auto collected = probe(path);
    EXPECT_TRUE(collected->values.empty());
    EXPECT_THAT(collected->error,
                FailedWith<MediaError>("Can not open media file: " + path.toStdString()
                                       + ": No such file or directory"));
}

TEST_F(ProbeServiceTest, AFileThatIsNoMediaFailsWithMediaError) {
    startProvider();
    const QString path = fixture("notmedia.txt");
    EXPECT_THAT(probe(path)->error,
                FailedWith<MediaError>("Can not open media file: " + path.toStdString()
                                       + ": Invalid data found when processing input"));
}

TEST_F(ProbeServiceTest, AnEmptyOrTruncatedFileFailsWithMediaError) {
    startProvider();
    for (const char* name : {"empty.mp4", "truncated.mp4"}) {
        const QString path = fixture(name);
        EXPECT_THAT(probe(path)->error,
                    FailedWith<MediaError>("Can not open media file: " + path.toStdString()
                                           + ": Invalid data found when processing input"));
    }
}

TEST_F(ProbeServiceTest, ADirectoryFailsWithMediaError) {
    startProvider();
    const QString path = scratchFile("");
    const auto collected = probe(path);
    EXPECT_THAT(collected->error,
                FailedWith<MediaError>("Can not open media file: " + path.toStdString()
                                       + ": Is a directory"));
}

TEST_F(ProbeServiceTest, WithDecodersDisabledProbingFailsWithPluginError) {
    startProvider({"--disable-plugin=DecodersFF"});
    EXPECT_THAT(probe(fixture("h264_aac.mp4"))->error,
                FailedWith<PluginError>("Can not read media: the plug-in DecodersFF is disabled"));
}

TEST_F(ProbeServiceTest, WithEncodersDisabledProbingStillWorks) {
    startProvider({"--disable-plugin=EncodersFF"});
    const auto collected = probe(fixture("h264_aac.mp4"));
    EXPECT_EQ(collected->values.size(), 1u) << failureText(collected->error);
}

TEST_F(ProbeServiceTest, WithoutAProviderTheStreamFailsWithErrorAndStartsNothing) {
    const auto collected = probe(fixture("h264_aac.mp4"));
    EXPECT_TRUE(collected->values.empty());
    EXPECT_THAT(collected->error,
                FailedWith<Error>("No runtime: the process has no GlobalContextProvider"));
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
}

TEST_F(ProbeServiceTest, AnInvalidCommandLineFailsBeforeAnythingStarts) {
    startProvider();
    ProbeService service;
    const auto collected = collectToEnd(service.run(QStringList{"probe"}));
    EXPECT_THAT(collected->error,
                FailedWith<Error>("No media file specified, try --help for all available options"));
    EXPECT_EQ(countOf("CoreManager::Initialize"), 0);
}

} // namespace
