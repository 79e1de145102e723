#include "platform/project/EditValidator.h"
#include "platform/project/ProjectError.h"
#include "tests/platform/project/FakeProber.h"
#include "tests/platform/project/ProjectText.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using namespace Project;

namespace {

class EditValidatorTest : public testing::Test {
protected:
    Edit validated(const std::string& text) { return validateEdit(readText(text), prober); }

    FakeProber prober;
};

TEST_F(EditValidatorTest, TheProjectLastsTheClipsLessTheTransitions) {
    const Edit edit = validated(projectWithClips(
        R"({"source": "a.mp4", "in_ms": 2000, "out_ms": 8000},
           {"source": "photo.jpg", "transition": {"type": "fade", "duration_ms": 1000}},
           {"color": "#203040", "duration_ms": 2000, "transition": {"type": "wipe-left", "duration_ms": 500}})"));
    EXPECT_EQ(edit.video[0].lengthMs, 6000);
    EXPECT_EQ(edit.video[1].kind, VideoClip::Kind::Still);
    EXPECT_EQ(edit.video[1].lengthMs, 4000);
    EXPECT_EQ(edit.video[1].startMs, 5000);
    EXPECT_EQ(edit.video[2].startMs, 8500);
    EXPECT_EQ(edit.lengthMs, 6000 + 4000 + 2000 - 1000 - 500);
}

TEST_F(EditValidatorTest, TheOutputTakesTheFirstClipsSizeAndTheFirstVideosRate) {
    prober.video("b.mp4", 5000).frameRate = {30000, 1001};
    const Edit edit = validated(
        projectWithClips(R"({"color": "#000000"}, {"source": "photo.jpg"}, {"source": "b.mp4"})"));
    EXPECT_EQ(edit.size, (Velmor::AV::Size{4000, 3000}));
    EXPECT_EQ(edit.frameRate, (Velmor::AV::Rational{30000, 1001}));
}

TEST_F(EditValidatorTest, AProjectOfColoursIs720pAt25) {
    const Edit edit = validated(projectWithClips(R"({"color": "#000000"})"));
    EXPECT_EQ(edit.size, (Velmor::AV::Size{1280, 720}));
    EXPECT_EQ(edit.frameRate, (Velmor::AV::Rational{25, 1}));
    EXPECT_EQ(edit.lengthMs, 4000);
}

TEST_F(EditValidatorTest, TheOutputsOwnValuesWin) {
    const Edit edit = validated(
        projectWithClips(R"({"source": "a.mp4"})",
                         R"("output": {"width": 640, "height": 360, "frame_rate": "50"}, )"));
    EXPECT_EQ(edit.size, (Velmor::AV::Size{640, 360}));
    EXPECT_EQ(edit.frameRate, (Velmor::AV::Rational{50, 1}));
}

TEST_F(EditValidatorTest, EachFileIsProbedOnce) {
    validated(projectWithClips(R"({"source": "a.mp4"}, {"source": "a.mp4"}, {"source": "a.mp4"})"));
    EXPECT_EQ(prober.probes, 1);
}

TEST_F(EditValidatorTest, ATransitionLongerThanTheClipBeforeItFails) {
    prober.video("short.mp4", 800);
    EXPECT_THAT(
        [&] {
            validated(projectWithClips(
                R"({"source": "short.mp4"}, {"source": "a.mp4", "transition": {"type": "fade", "duration_ms": 1000}})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[1].transition: 1000 ms is "
                                 "longer than the clip before it (800 ms)"));
}

TEST_F(EditValidatorTest, ATransitionLongerThanItsOwnClipFails) {
    EXPECT_THAT(
        [&] {
            validated(projectWithClips(
                R"({"source": "a.mp4"}, {"color": "#000000", "duration_ms": 800, "transition": {"type": "fade"}})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[1].transition: 1000 ms is "
                                 "longer than its own clip (800 ms)"));
}

TEST_F(EditValidatorTest, TwoTransitionsMayNotOverlap) {
    EXPECT_THAT(
        [&] {
            validated(projectWithClips(
                R"({"source": "a.mp4"}, {"color": "#000000", "duration_ms": 1500, "transition": {"type": "fade"}},
                   {"source": "a.mp4", "transition": {"type": "fade", "duration_ms": 600}})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[2].transition: 600 ms and "
                                 "the transition into the clip before it (1000 ms) are longer "
                                 "than that clip (1500 ms)"));
}

TEST_F(EditValidatorTest, TheFirstClipHasNoTransition) {
    EXPECT_THAT(
        [&] {
            validated(projectWithClips(R"({"source": "a.mp4", "transition": {"type": "fade"}})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].transition: the first "
                                 "clip has no clip before it"));
}

TEST_F(EditValidatorTest, AMissingFileIsNamedAsTheProjectNamesIt) {
    EXPECT_THAT(
        [&] {
            validated(projectWithClips(
                R"({"source": "a.mp4"}, {"source": "a.mp4"}, {"source": "b.mp4"})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[2].source: Can not open "
                                 "media file: b.mp4: No such file or directory"));
}

TEST_F(EditValidatorTest, AnOutPointPastTheEndFails) {
    EXPECT_THAT(
        [&] { validated(projectWithClips(R"({"source": "a.mp4", "out_ms": 90000})")); },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].out_ms: 90000 ms is past "
                                 "the end of a.mp4 (60000 ms)"));
    EXPECT_THAT(
        [&] { validated(projectWithClips(R"({"source": "a.mp4", "in_ms": 60000})")); },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].in_ms: 60000 ms is past "
                                 "the end of a.mp4 (60000 ms)"));
    EXPECT_THAT(
        [&] {
            validated(projectWithClips(R"({"source": "a.mp4", "in_ms": 5000, "out_ms": 2000})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].out_ms: 2000 ms is not "
                                 "after in_ms (5000 ms)"));
}

TEST_F(EditValidatorTest, StillsAndVideosAreCutTheirOwnWay) {
    EXPECT_THAT(
        [&] { validated(projectWithClips(R"({"source": "photo.jpg", "out_ms": 2000})")); },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].out_ms: photo.jpg is a "
                                 "still picture; give duration_ms"));
    EXPECT_THAT(
        [&] { validated(projectWithClips(R"({"source": "a.mp4", "duration_ms": 2000})")); },
        FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].duration_ms: a.mp4 is a "
                                 "video; cut it with in_ms and out_ms"));
}

TEST_F(EditValidatorTest, AVideoClipNeedsAPicture) {
    EXPECT_THAT([&] { validated(projectWithClips(R"({"source": "music.mp3"})")); },
                FailedWith<ProjectError>("projects/edit.json: tracks[0].clips[0].source: No video "
                                         "stream in music.mp3"));
}

TEST_F(EditValidatorTest, OverlaysAreCutAtTheEndOfTheProject) {
    prober.video("pip.mp4", 3000);
    const Edit edit = validated(projectWithTracks(
        R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
           {"type": "overlay", "clips": [{"text": "a", "start_ms": 500},
                                         {"source": "logo.png", "start_ms": 8000, "duration_ms": 5000},
                                         {"source": "pip.mp4", "in_ms": 1000}]})"));
    const auto& clips = edit.overlays[0].clips;
    EXPECT_EQ(clips[0].lengthMs, 9500);
    EXPECT_EQ(clips[1].kind, OverlayClip::Kind::Picture);
    EXPECT_EQ(clips[1].lengthMs, 2000);
    EXPECT_EQ(clips[2].kind, OverlayClip::Kind::Video);
    EXPECT_EQ(clips[2].lengthMs, 2000);
}

TEST_F(EditValidatorTest, AnOverlayAfterTheEndFails) {
    EXPECT_THAT(
        [&] {
            validated(projectWithTracks(R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
                                          {"type": "overlay", "clips": [{"text": "a", "start_ms": 20000}]})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[1].clips[0].start_ms: 20000 ms is "
                                 "past the end of the project (10000 ms)"));
}

TEST_F(EditValidatorTest, AVideoOverlayLongerThanItsVideoFails) {
    prober.video("pip.mp4", 3000);
    EXPECT_THAT(
        [&] {
            validated(projectWithTracks(R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
                                          {"type": "overlay", "clips": [{"source": "pip.mp4", "in_ms": 1000, "duration_ms": 2500}]})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[1].clips[0].duration_ms: 2500 ms "
                                 "from in_ms (1000 ms) is past the end of pip.mp4 (3000 ms)"));
}

TEST_F(EditValidatorTest, AVideoClipKnowsWhetherItsFileHasSound) {
    prober.video("silent.mp4", 5000).hasAudio = false;
    const Edit edit = validated(projectWithClips(
        R"({"source": "a.mp4"}, {"source": "silent.mp4"}, {"source": "photo.jpg"}, {"color": "#000000"})"));
    EXPECT_TRUE(edit.video[0].hasAudio);
    EXPECT_FALSE(edit.video[1].hasAudio);
    EXPECT_FALSE(edit.video[2].hasAudio);
    EXPECT_FALSE(edit.video[3].hasAudio);
}

TEST_F(EditValidatorTest, AnAudioClipPlaysFromInToOutOrTheFilesEnd) {
    const Edit edit =
        validated(projectWithTracks(R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
                                      {"type": "audio", "clips": [
                                        {"source": "music.mp3", "in_ms": 1000, "out_ms": 4000},
                                        {"source": "music.mp3", "in_ms": 170000, "loop": true}]})"));
    EXPECT_EQ(edit.audio[0].clips[0].lengthMs, 3000);
    EXPECT_EQ(edit.audio[0].clips[1].lengthMs, 10000);
}

TEST_F(EditValidatorTest, AnAudioClipNeedsSound) {
    EXPECT_THAT(
        [&] {
            validated(projectWithTracks(R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
                                          {"type": "audio", "clips": [{"source": "photo.jpg"}]})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[1].clips[0].source: No audio stream "
                                 "in photo.jpg"));
    EXPECT_THAT(
        [&] {
            validated(projectWithTracks(R"({"type": "video", "clips": [{"source": "clip.mp4"}]},
                                          {"type": "audio", "clips": [{"source": "music.mp3", "out_ms": 200000}]})"));
        },
        FailedWith<ProjectError>("projects/edit.json: tracks[1].clips[0].out_ms: 200000 ms is past "
                                 "the end of music.mp3 (180000 ms)"));
}

} // namespace
