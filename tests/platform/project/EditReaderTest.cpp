#include "platform/project/EditReader.h"
#include "platform/project/ProjectError.h"
#include "tests/platform/project/ProjectText.h"
#include "tests/support/FailedWith.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace EditorService::Testing;
using namespace Project;

namespace {

class TwoThemes : public IThemes {
public:
    std::vector<std::string> themeNames() const override { return {"Classic", "Travel"}; }
    std::optional<ThemeDefaults> theme(const std::string& name) const override {
        if (name != "Classic")
            return std::nullopt;
        return ThemeDefaults{"Classic", nlohmann::json{{"type", "fade"}, {"duration_ms", 500}},
                             nlohmann::json{{"color", "#ffff00"}, {"position", "top-left"}}};
    }
};

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

TEST(EditReaderTest, DefaultsFillWhatAProjectLeavesOut) {
    const Edit edit = readText(projectWithClips(R"({"source": "a.mp4"})"));
    EXPECT_EQ(edit.projectFile, "projects/edit.json");
    EXPECT_FALSE(edit.output.width);
    EXPECT_FALSE(edit.output.frameRate);
    EXPECT_EQ(edit.output.sampleRate, 48000);
    EXPECT_EQ(edit.output.background, (Effects::Colour{0, 0, 0, 255}));
    ASSERT_EQ(edit.video.size(), 1u);
    const VideoClip& clip = edit.video[0];
    EXPECT_EQ(clip.path, "tracks[0].clips[0]");
    EXPECT_EQ(clip.inMs, 0);
    EXPECT_FALSE(clip.outMs);
    EXPECT_EQ(clip.fit, Velmor::Proc::SettingsResizer::Fit);
    EXPECT_EQ(clip.volumeDb, 0.0);
    EXPECT_FALSE(clip.transition);
    EXPECT_FALSE(edit.loudnessLufs);
}

TEST(EditReaderTest, MediaNamesResolveAgainstTheProjectsFolder) {
    const Edit edit =
        readText(projectWithClips(R"({"source": "media/a.mp4"}, {"source": "/abs/b.mp4"})"));
    EXPECT_EQ(edit.video[0].source, "media/a.mp4");
    EXPECT_EQ(edit.video[0].file, QDir::current().absoluteFilePath("projects/media/a.mp4"));
    EXPECT_EQ(edit.video[1].file, "/abs/b.mp4");
}

TEST(EditReaderTest, TheIssuesExampleReadsWhole) {
    const Edit edit = readText(R"({"reelsmith_project": 1,
 "output": {"width": 1280, "height": 720, "frame_rate": "25/1", "sample_rate": 48000, "background": "#000000"},
 "tracks": [
  {"type": "video", "clips": [
    {"source": "a.mp4", "in_ms": 2000, "out_ms": 8000, "fit": "Fill", "volume_db": 0},
    {"source": "photo.jpg", "duration_ms": 4000,
     "pan_zoom": {"from": [0, 0, 1, 1], "to": [0.5, 0.25, 0.5, 0.5], "easing": "ease-in-out"},
     "transition": {"type": "fade", "duration_ms": 1000}},
    {"color": "#203040", "duration_ms": 2000, "transition": {"type": "wipe-left", "duration_ms": 500}}]},
  {"type": "overlay", "clips": [
    {"text": "Summer 2026", "start_ms": 500, "duration_ms": 3000,
     "style": {"font": "DejaVu Sans", "size": 72, "color": "#ffffff", "position": "bottom-center",
               "fade_in_ms": 300, "fade_out_ms": 300}},
    {"source": "logo.png", "start_ms": 0, "duration_ms": 10000, "rect": [0.85, 0.05, 0.1, 0.1],
     "opacity": 0.8}]},
  {"type": "audio", "clips": [
    {"source": "music.mp3", "start_ms": 0, "volume_db": -6, "fade_in_ms": 1000, "fade_out_ms": 2000,
     "loop": true}],
   "duck": {"amount_db": -12, "threshold_db": -30, "attack_ms": 250, "release_ms": 1500}}],
 "loudness_lufs": -16})");
    EXPECT_EQ(*edit.output.width, 1280);
    EXPECT_EQ(*edit.output.frameRate, (Velmor::AV::Rational{25, 1}));
    EXPECT_EQ(edit.video[0].fit, Velmor::Proc::SettingsResizer::Fill);
    EXPECT_EQ(*edit.video[0].outMs, 8000);
    EXPECT_EQ(edit.video[1].panZoom->to, (Effects::NormalisedRect{0.5, 0.25, 0.5, 0.5}));
    EXPECT_EQ(edit.video[1].panZoom->easing, Effects::Easing::EaseInOut);
    EXPECT_EQ(edit.video[2].kind, VideoClip::Kind::Colour);
    EXPECT_EQ(edit.video[2].colour, (Effects::Colour{0x20, 0x30, 0x40, 255}));
    EXPECT_EQ(edit.video[2].transition->type, "wipe-left");
    EXPECT_EQ(edit.video[2].transition->path, "tracks[0].clips[2].transition");
    ASSERT_EQ(edit.overlays.size(), 1u);
    const OverlayClip& title = edit.overlays[0].clips[0];
    EXPECT_EQ(title.kind, OverlayClip::Kind::Text);
    EXPECT_EQ(title.style.size, 72);
    EXPECT_EQ(title.fadeOutMs, 300);
    EXPECT_EQ(edit.overlays[0].clips[1].kind, OverlayClip::Kind::Picture);
    EXPECT_DOUBLE_EQ(edit.overlays[0].clips[1].opacity, 0.8);
    ASSERT_EQ(edit.audio.size(), 1u);
    EXPECT_TRUE(edit.audio[0].clips[0].loop);
    EXPECT_EQ(edit.audio[0].duck->releaseMs, 1500);
    EXPECT_EQ(*edit.loudnessLufs, -16);
}

TEST(EditReaderTest, AMutedClipHasNoVolume) {
    const Edit edit = readText(projectWithClips(R"({"source": "a.mp4", "volume_db": null})"));
    EXPECT_FALSE(edit.video[0].volumeDb);
}

TEST(EditReaderTest, JsonThatDoesNotParseSaysWhere) {
    EXPECT_THAT([] { readText("{\"reelsmith_project\": 1,\n \"tracks\": [}\n"); },
                FailedWith<ProjectError>("projects/edit.json: invalid JSON at line 2, column 13: "
                                         "syntax error while parsing value - unexpected '}'; "
                                         "expected '[', '{', or a literal"));
    EXPECT_THAT([] { readText(""); },
                FailedWith<ProjectError>("projects/edit.json: invalid JSON at line 1, column 1: "
                                         "syntax error while parsing value - unexpected end of "
                                         "input; expected '[', '{', or a literal"));
}

TEST(EditReaderTest, ANumberTooLargeForADoubleDoesNotParse) {
    EXPECT_THAT([] { readText("{\"reelsmith_project\": 1,\n \"loudness_lufs\": -53e661}"); },
                FailedWith<ProjectError>("projects/edit.json: invalid JSON at line 2, column 19: "
                                         "number overflow parsing '-53e661'"));
}

TEST(EditReaderTest, TextThatIsNotUtf8DoesNotParse) {
    EXPECT_THAT([] { readText(projectWithClips("{\"source\": \"a\xff.mp4\"}")); },
                FailedWith<ProjectError>("projects/edit.json: invalid JSON at line 1, column 78: "
                                         "syntax error while parsing value - invalid string: "
                                         "ill-formed UTF-8 byte; last read: '\"a\xEF\xBF\xBD'"));
}

TEST(EditReaderTest, AnObjectWithoutTheVersionIsNoProject) {
    for (const char* text : {"{}", "[1]", R"({"reelsmith": 1})"})
        EXPECT_THAT([&] { readText(text); },
                    FailedWith<ProjectError>("projects/edit.json: not a project: expected a JSON "
                                             "object whose \"reelsmith_project\" is 1"));
}

TEST(EditReaderTest, AnotherVersionIsNotRead) {
    EXPECT_THAT([] { readText(R"({"reelsmith_project": 2, "tracks": []})"); },
                FailedWith<ProjectError>("projects/edit.json: reelsmith_project: version 2 is not "
                                         "known; this build reads version 1"));
    EXPECT_THAT([] { readText(R"({"reelsmith_project": "1"})"); },
                FailedWith<ProjectError>("projects/edit.json: reelsmith_project: expected 1, "
                                         "found \"1\""));
}

TEST(EditReaderTest, AnUnknownKeyIsNamedWithWhatIsAvailable) {
    EXPECT_THAT(
        [] { readText(projectWithClips(R"({"source": "a.mp4", "speed": 2})")); },
        FailedWith<ProjectError>("projects/edit.json: unknown key \"speed\" at "
                                 "tracks[0].clips[0].speed; available: source, in_ms, "
                                 "out_ms, duration_ms, fit, volume_db, pan_zoom, transition"));
    EXPECT_THAT([] { readText(projectWithClips(R"({"source": "a.mp4"})", R"("title": "x", )")); },
                FailedWith<ProjectError>("projects/edit.json: unknown key \"title\" at title; "
                                         "available: reelsmith_project, output, theme, tracks, "
                                         "loudness_lufs"));
}

TEST(EditReaderTest, AWrongTypeIsNamed) {
    EXPECT_THAT(
        [] { readText(projectWithClips(R"({"source": "a.mp4", "in_ms": "2000"})")); },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].in_ms: expected "
                                 "a whole number of milliseconds, 0 or more, found \"2000\""));
    EXPECT_THAT(
        [] { readText(R"({"reelsmith_project": 1, "tracks": {}})"); },
        FailedWith<ProjectError>("projects/edit.json: tracks: expected an array, found {}"));
}

TEST(EditReaderTest, AnUnknownTransitionListsTheAvailableOnes) {
    EXPECT_THAT(
        [] {
            readText(projectWithClips(
                R"({"source": "a.mp4"}, {"source": "a.mp4", "transition": {"type": "zoom-blur"}})"));
        },
        FailedWith<ProjectError>(
            "projects/edit.json: unknown transition \"zoom-blur\" at "
            "tracks[0].clips[1].transition.type; available: fade, fade-black, fade-white, "
            "dissolve, wipe-left, wipe-right, wipe-up, wipe-down, slide-left, slide-right, "
            "slide-up, slide-down, circle-open, circle-close"));
}

TEST(EditReaderTest, AProjectWithoutAVideoTrackFails) {
    EXPECT_THAT([] { readText(projectWithTracks(R"({"type": "overlay", "clips": []})")); },
                FailedWith<ProjectError>("projects/edit.json: tracks: no video track; a project "
                                         "has exactly one"));
    EXPECT_THAT([] { readText(R"({"reelsmith_project": 1})"); },
                FailedWith<ProjectError>("projects/edit.json: tracks: no video track; a project "
                                         "has exactly one"));
}

TEST(EditReaderTest, AProjectWithoutClipsFails) {
    EXPECT_THAT([] { readText(projectWithClips("")); },
                FailedWith<ProjectError>("projects/edit.json: tracks[0].clips: the video track "
                                         "has no clips"));
}

TEST(EditReaderTest, ASecondVideoTrackFails) {
    const std::string track = R"({"type": "video", "clips": [{"source": "a.mp4"}]})";
    EXPECT_THAT([&] { readText(projectWithTracks(track + ", " + track)); },
                FailedWith<ProjectError>("projects/edit.json: tracks[1]: a second video track; a "
                                         "project has exactly one"));
}

TEST(EditReaderTest, AnUnknownTrackTypeIsNamed) {
    EXPECT_THAT([] { readText(projectWithTracks(R"({"type": "subtitles", "clips": []})")); },
                FailedWith<ProjectError>("projects/edit.json: unknown track type \"subtitles\" at "
                                         "tracks[0].type; available: video, overlay, audio"));
}

TEST(EditReaderTest, WidthAndHeightComeTogether) {
    EXPECT_THAT(
        [] {
            readText(projectWithClips(R"({"source": "a.mp4"})", R"("output": {"width": 640}, )"));
        },
        FailedWith<ProjectError>("projects/edit.json: output: give \"width\" and "
                                 "\"height\" together"));
}

TEST(EditReaderTest, FrameRatesAreFractions) {
    const auto rate = [](const std::string& text) {
        return *readText(projectWithClips(R"({"source": "a.mp4"})",
                                          R"("output": {"frame_rate": )" + text + "}, "))
                    .output.frameRate;
    };
    EXPECT_EQ(rate("\"30000/1001\""), (Velmor::AV::Rational{30000, 1001}));
    EXPECT_EQ(rate("\"50\""), (Velmor::AV::Rational{50, 1}));
    EXPECT_THAT([&] { rate("\"0/1\""); },
                FailedWith<ProjectError>("projects/edit.json: output.frame_rate: expected a frame "
                                         "rate such as \"25/1\" or \"30000/1001\", found \"0/1\""));
    EXPECT_THAT([&] { rate("25"); },
                FailedWith<ProjectError>("projects/edit.json: output.frame_rate: expected a frame "
                                         "rate such as \"25/1\" or \"30000/1001\", found 25"));
}

TEST(EditReaderTest, AThemeFillsTransitionsAndTitleStyles) {
    const TwoThemes themes;
    const Edit edit = readText(
        projectWithTracks(R"({"type": "video", "clips": [{"source": "a.mp4"}, {"source": "a.mp4"},
                               {"source": "a.mp4", "transition": null},
                               {"source": "a.mp4", "transition": {"type": "dissolve"}}]},
                             {"type": "overlay", "clips": [{"text": "Hi", "style": {"color": "#ff0000"}}]})",
                          R"("theme": "Classic", )"),
        themes);
    EXPECT_EQ(edit.theme, "Classic");
    EXPECT_FALSE(edit.video[0].transition);
    EXPECT_EQ(edit.video[1].transition->type, "fade");
    EXPECT_EQ(edit.video[1].transition->durationMs, 500);
    EXPECT_FALSE(edit.video[2].transition);
    EXPECT_EQ(edit.video[3].transition->type, "dissolve");
    EXPECT_EQ(edit.video[3].transition->durationMs, 1000);
    EXPECT_EQ(edit.overlays[0].clips[0].style.colour, (Effects::Colour{255, 0, 0, 255}));
    EXPECT_EQ(edit.overlays[0].clips[0].style.position, Effects::Position::TopLeft);
}

TEST(EditReaderTest, AnUnknownThemeListsTheAvailableOnes) {
    const TwoThemes themes;
    EXPECT_THAT(
        [&] {
            readText(projectWithClips(R"({"source": "a.mp4"})", R"("theme": "Noir", )"), themes);
        },
        FailedWith<ProjectError>("projects/edit.json: unknown theme \"Noir\" at theme; "
                                 "available: Classic, Travel"));
}

TEST(EditReaderTest, AFileIsReadAndItsFolderResolvesNames) {
    QTemporaryDir folder;
    const QString path = folder.filePath("edit.json");
    writeFile(path, "\xEF\xBB\xBF  "
                        + QByteArray::fromStdString(projectWithClips(R"({"source": "a.mp4"})")));
    EXPECT_TRUE(looksLikeProject(path));
    const Edit edit = readEdit(path, NoThemes());
    EXPECT_EQ(edit.video[0].file, folder.filePath("a.mp4"));
}

TEST(EditReaderTest, AMissingFileIsNamed) {
    EXPECT_FALSE(looksLikeProject("/no/such/edit.json"));
    EXPECT_THAT([] { readEdit("/no/such/edit.json", NoThemes()); },
                FailedWith<ProjectError>("/no/such/edit.json: Can not read the project file: No "
                                         "such file or directory"));
}

TEST(EditReaderTest, MediaDoNotLookLikeProjects) {
    QTemporaryDir folder;
    writeFile(folder.filePath("a.mp4"), QByteArray("\0\0\0\x20"
                                                   "ftypisom",
                                                   12));
    writeFile(folder.filePath("list.json"), "[{}]");
    EXPECT_FALSE(looksLikeProject(folder.filePath("a.mp4")));
    EXPECT_FALSE(looksLikeProject(folder.filePath("list.json")));
}

// Looking into a pipe would wait for a writer, or take the bytes the media reader needs.
TEST(EditReaderTest, APipeIsNeverLookedInto) {
    QTemporaryDir folder;
    const std::string fifo = folder.filePath("stalled.mp4").toStdString();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    // A writer that never writes: a read would wait for data rather than end.
    const int writer = ::open(fifo.c_str(), O_RDWR);
    ASSERT_GE(writer, 0);
    EXPECT_FALSE(looksLikeProject(QString::fromStdString(fifo)));
    ::close(writer);
}

} // namespace
