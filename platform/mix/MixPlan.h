#pragma once

#include "platform/project/Edit.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace Mixing {

// A change of level over [start, start + length) samples of the output: a fade-in rises from
// silence to full over it, a fade-out falls from full to silence, reaching it at the end.
struct Fade {
    enum class Curve { Linear, EqualPower };

    std::int64_t start = 0;
    std::int64_t length = 0;
    Curve curve = Curve::Linear;
};

// One clip's sound on the output's samples: its file from `inMs` on over [start, end), again
// from `inMs` every `period` samples when it loops (0: it plays once), at `gainDb`, with its
// fades.
struct Voice {
    QString file;
    std::int64_t inMs = 0;
    std::int64_t start = 0;
    std::int64_t end = 0;
    std::int64_t period = 0;
    double gainDb = 0;
    std::optional<Fade> fadeIn;
    std::optional<Fade> fadeOut;
};

struct TrackPlan {
    std::vector<Voice> voices;
    std::optional<Project::Duck> duck;
};

// What the mix of a validated edit plays, in samples of its rate: the video track's clips'
// own sound, crossing over with equal power where a transition overlaps two clips, and each
// audio track's clips, cut at the end of the project, their fade-outs ending there.
struct MixPlan {
    int sampleRate = 48000;
    // The project's length.
    std::int64_t samples = 0;
    TrackPlan video;
    std::vector<TrackPlan> audio;
    std::optional<double> loudnessLufs;

    // Whether anything plays at all.
    bool hasSound() const;
};

// `edit` must be validated (Project::validateEdit).
MixPlan planMix(const Project::Edit& edit);

} // namespace Mixing
