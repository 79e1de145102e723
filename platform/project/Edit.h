#pragma once

#include "platform/av/Geometry.h"
#include "platform/av/Rational.h"
#include "platform/effects/Colour.h"
#include "platform/effects/NormalisedRect.h"
#include "platform/effects/PanZoom.h"
#include "platform/effects/Title.h"
#include "platform/proc/SettingsResizer.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Project {

// An edit as a project file (version 1) describes it: the output, one sequence of video clips
// played back to back, overlay tracks above it and audio tracks beside it. Times are
// milliseconds. Each part keeps `path`, where it stands in the file ("tracks[0].clips[1]"), for
// messages. What reading leaves open (a clip's length, the output's size) validation settles;
// the fields it sets are marked.

// The output; every value may be left to its default.
struct Output {
    // Both or neither; by default the first clip's with a picture, else 1280x720.
    std::optional<int> width;
    std::optional<int> height;
    // By default the first moving video clip's, else 25/1.
    std::optional<Velmor::AV::Rational> frameRate;
    int sampleRate = 48000;
    Effects::Colour background{0, 0, 0};
};

struct TransitionSpec {
    std::string path;
    // One of Effects::transitionKinds().
    std::string type;
    std::int64_t durationMs = 1000;
};

// A clip of the video track: a media file (a video, or a still picture), or a colour.
struct VideoClip {
    enum class Kind { Media, Still, Colour };

    std::string path;
    // Media until validation tells a still picture from a video.
    Kind kind = Kind::Media;
    // As the project writes it, and resolved against the project file's folder.
    QString source;
    QString file;
    Effects::Colour colour;
    std::int64_t inMs = 0;
    std::optional<std::int64_t> outMs;
    std::optional<std::int64_t> durationMs;
    Velmor::Proc::SettingsResizer::CustomModes fit = Velmor::Proc::SettingsResizer::Fit;
    // Empty: the clip's own audio is muted.
    std::optional<double> volumeDb = 0.0;
    std::optional<Effects::PanZoomPath> panZoom;
    std::optional<TransitionSpec> transition;

    // Set by validation: where the clip starts in the project and how long it lasts, and
    // whether its file has sound.
    std::int64_t startMs = 0;
    std::int64_t lengthMs = 0;
    bool hasAudio = false;
};

// A clip of an overlay track: a title, a still picture or a video, over the video track.
struct OverlayClip {
    enum class Kind { Text, Picture, Video };

    std::string path;
    // Picture until validation tells a video from a still picture, for clips with a source.
    Kind kind = Kind::Text;
    std::string text;
    Effects::TitleStyle style;
    QString source;
    QString file;
    std::int64_t inMs = 0;
    std::int64_t startMs = 0;
    // By default up to the end of the project (a video: of the video, if that comes first).
    std::optional<std::int64_t> durationMs;
    Effects::NormalisedRect rect;
    double opacity = 1;
    std::int64_t fadeInMs = 0;
    std::int64_t fadeOutMs = 0;

    // Set by validation: how long it shows, cut at the end of the project.
    std::int64_t lengthMs = 0;
};

struct OverlayTrack {
    std::string path;
    std::vector<OverlayClip> clips;
};

// A clip of an audio track; read and validated, mixed by the audio renderer.
struct AudioClip {
    std::string path;
    QString source;
    QString file;
    std::int64_t startMs = 0;
    std::int64_t inMs = 0;
    std::optional<std::int64_t> outMs;
    double volumeDb = 0;
    std::int64_t fadeInMs = 0;
    std::int64_t fadeOutMs = 0;
    bool loop = false;

    // Set by validation: how long one play lasts, from in_ms to out_ms (or the file's end).
    std::int64_t lengthMs = 0;
};

// Lowers a track while the video track's audio is above the threshold.
struct Duck {
    double amountDb = -12;
    double thresholdDb = -30;
    std::int64_t attackMs = 250;
    std::int64_t releaseMs = 1500;
};

struct AudioTrack {
    std::string path;
    std::vector<AudioClip> clips;
    std::optional<Duck> duck;
};

struct Edit {
    // The project file as it was named, which every message starts with.
    QString projectFile;
    Output output;
    QString theme;
    std::string videoTrackPath;
    std::vector<VideoClip> video;
    std::vector<OverlayTrack> overlays;
    std::vector<AudioTrack> audio;
    std::optional<double> loudnessLufs;

    // Set by validation: the output's size and rate, and the project's length, the sum of the
    // clips less the sum of the transitions.
    Velmor::AV::Size size;
    Velmor::AV::Rational frameRate;
    std::int64_t lengthMs = 0;
};

} // namespace Project
