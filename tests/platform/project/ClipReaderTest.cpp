#include "platform/project/ClipReader.h"
#include "platform/project/ProjectError.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using namespace Project;

namespace {

struct Read {
    nlohmann::json document;
    JsonNode node() const { return JsonNode(document, "clip", "p.json"); }
};

Read parsed(const char* text) {
    return {nlohmann::json::parse(text)};
}

TEST(ClipReaderTest, AClipIsAFileOrAColour) {
    EXPECT_THAT([] { readVideoClip(parsed(R"({"duration_ms": 5})").node(), QDir("/p")); },
                FailedWith<ProjectError>("p.json: clip: a clip needs \"source\" or \"color\""));
    EXPECT_THAT(
        [] {
            readVideoClip(parsed(R"({"source": "a.mp4", "color": "#000000"})").node(), QDir("/p"));
        },
        FailedWith<ProjectError>("p.json: clip: a clip has \"source\" or \"color\", not both"));
}

TEST(ClipReaderTest, AColourClipTakesOnlyItsKeys) {
    EXPECT_THAT(
        [] { readVideoClip(parsed(R"({"color": "#000000", "in_ms": 5})").node(), QDir("/p")); },
        FailedWith<ProjectError>("p.json: unknown key \"in_ms\" at clip.in_ms; available: color, "
                                 "duration_ms, transition"));
}

TEST(ClipReaderTest, DurationsAreAboveZero) {
    EXPECT_THAT(
        [] {
            readVideoClip(parsed(R"({"color": "#000000", "duration_ms": 0})").node(), QDir("/p"));
        },
        FailedWith<ProjectError>("p.json: clip.duration_ms: expected a whole number of "
                                 "milliseconds above 0, found 0"));
}

TEST(ClipReaderTest, AnUnknownFitListsTheSixModes) {
    EXPECT_THAT(
        [] { readVideoClip(parsed(R"({"source": "a.mp4", "fit": "fill"})").node(), QDir("/p")); },
        FailedWith<ProjectError>("p.json: unknown fit \"fill\" at clip.fit; available: Fit, Fill, "
                                 "Stretch, FitWidth, FitHeight, Center"));
}

TEST(ClipReaderTest, PanAndZoomDefaultsToTheWholePictureStandingStill) {
    const Effects::PanZoomPath path = readPanZoom(parsed(R"({"to": [0.5, 0.5, 0.5, 0.5]})").node());
    EXPECT_EQ(path.from, (Effects::NormalisedRect{0, 0, 1, 1}));
    EXPECT_EQ(path.easing, Effects::Easing::Linear);
    EXPECT_EQ(readPanZoom(parsed(R"({"from": [0, 0, 0.5, 0.5]})").node()).to,
              (Effects::NormalisedRect{0, 0, 0.5, 0.5}));
}

TEST(ClipReaderTest, ARectangleStaysInThePicture) {
    EXPECT_THAT([] { readPanZoom(parsed(R"({"to": [0.5, 0.25, 0.6, 0.5]})").node()); },
                FailedWith<ProjectError>("p.json: clip.to: [0.5,0.25,0.6,0.5] leaves the picture; "
                                         "x + w and y + h are at most 1"));
    EXPECT_THAT([] { readPanZoom(parsed(R"({"to": [0, 0, 1]})").node()); },
                FailedWith<ProjectError>("p.json: clip.to: expected [x, y, width, height], found "
                                         "[0,0,1]"));
    EXPECT_THAT([] { readPanZoom(parsed(R"({"to": [0, 0, 0, 1]})").node()); },
                FailedWith<ProjectError>("p.json: clip.to: expected a rectangle of some width "
                                         "and height, found [0,0,0,1]"));
    EXPECT_THAT([] { readPanZoom(parsed(R"({"easing": "bounce"})").node()); },
                FailedWith<ProjectError>("p.json: unknown easing \"bounce\" at clip.easing; "
                                         "available: linear, ease-in, ease-out, ease-in-out"));
}

TEST(ClipReaderTest, PanAndZoomFillsTheFrameWithoutAFitMode) {
    EXPECT_THAT(
        [] {
            readVideoClip(parsed(R"({"source": "a.jpg", "fit": "Fit", "pan_zoom": {}})").node(),
                          QDir("/p"));
        },
        FailedWith<ProjectError>("p.json: clip.fit: a clip with pan_zoom fills the frame with its "
                                 "rectangle; leave fit out"));
}

TEST(ClipReaderTest, ATransitionLastsASecondByDefault) {
    const TransitionSpec transition = readTransition(parsed(R"({"type": "circle-open"})").node());
    EXPECT_EQ(transition.durationMs, 1000);
    EXPECT_EQ(transition.path, "clip");
}

TEST(ClipReaderTest, AnOverlayIsATitleOrAFile) {
    EXPECT_THAT([] { readOverlayClip(parsed(R"({"start_ms": 5})").node(), QDir("/p")); },
                FailedWith<ProjectError>("p.json: clip: an overlay needs \"text\" or \"source\""));
    EXPECT_THAT(
        [] { readOverlayClip(parsed(R"({"text": "a", "source": "b.png"})").node(), QDir("/p")); },
        FailedWith<ProjectError>("p.json: clip: an overlay has \"text\" or \"source\", not both"));
}

TEST(ClipReaderTest, ATitleStyleHasTheDefaultsOfATitle) {
    const OverlayClip clip = readOverlayClip(parsed(R"({"text": "a\nb"})").node(), QDir("/p"));
    EXPECT_EQ(clip.text, "a\nb");
    EXPECT_EQ(clip.style.font, "DejaVu Sans");
    EXPECT_EQ(clip.style.size, 0);
    EXPECT_EQ(clip.style.colour, (Effects::Colour{255, 255, 255, 255}));
    EXPECT_EQ(clip.style.position, Effects::Position::BottomCenter);
    EXPECT_FALSE(clip.style.background);
    EXPECT_FALSE(clip.durationMs);
}

TEST(ClipReaderTest, AnUnknownPositionListsTheNine) {
    EXPECT_THAT([] { readTitleStyle(parsed(R"({"position": "middle"})").node()); },
                FailedWith<ProjectError>(
                    "p.json: unknown position \"middle\" at clip.position; available: top-left, "
                    "top-center, top-right, center-left, center, center-right, bottom-left, "
                    "bottom-center, bottom-right"));
}

TEST(ClipReaderTest, AnImageOverlayFillsTheFrameByDefault) {
    const OverlayClip clip =
        readOverlayClip(parsed(R"({"source": "logo.png", "opacity": 0.5})").node(), QDir("/p"));
    EXPECT_EQ(clip.kind, OverlayClip::Kind::Picture);
    EXPECT_EQ(clip.file, "/p/logo.png");
    EXPECT_EQ(clip.rect, (Effects::NormalisedRect{0, 0, 1, 1}));
    EXPECT_THAT(
        [] {
            readOverlayClip(parsed(R"({"source": "logo.png", "opacity": 2})").node(), QDir("/p"));
        },
        FailedWith<ProjectError>("p.json: clip.opacity: expected a number from 0 to 1, found 2"));
}

TEST(ClipReaderTest, AudioClipsAndDuckingReadTheirFields) {
    const AudioClip clip = readAudioClip(
        parsed(R"({"source": "m.mp3", "in_ms": 5, "out_ms": 9, "volume_db": -6})").node(),
        QDir("/p"));
    EXPECT_EQ(clip.outMs, 9);
    EXPECT_DOUBLE_EQ(clip.volumeDb, -6);
    EXPECT_FALSE(clip.loop);
    EXPECT_THAT([] { readDuck(parsed(R"({"amount_db": 6})").node()); },
                FailedWith<ProjectError>("p.json: clip.amount_db: expected a number of decibels "
                                         "from -100 to 0, found 6"));
    EXPECT_EQ(readDuck(parsed("{}").node()).attackMs, 250);
}

} // namespace
