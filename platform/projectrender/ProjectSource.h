#pragma once

#include "platform/project/Edit.h"
#include "platform/render/AudioFormat.h"
#include "platform/render/AudioSource.h"
#include "platform/render/ClipSettings.h"
#include "platform/render/VideoSource.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Velmor::Render {

class Stop;

// A validated project rendered as one video source and one audio source: the composed
// pictures at the output's size and rate, and the mix, stereo at the output's sample rate
// (silence for a project with nothing to hear), for the part of the project a range asks for.
// A range starts at the first frame that starts at or after its start and ends before the first
// frame that starts at or after its end; the sound starts and ends with those frames.
//
// Threads and lifetimes as a ClipSource's: make it and take its sources on one thread, then
// each source on one thread at a time; `stop` outlives it.
class ProjectSource {
public:
    // `range` in microseconds of the project. Throws MediaError "Range <from>:<to> ms is
    // outside <project> (<length> ms)" and "Can not export <project>: no video frame in the
    // range".
    ProjectSource(Project::Edit edit, const std::optional<ClipSettings::Range>& range,
                  const Stop& stop);
    ProjectSource(const ProjectSource&) = delete;
    ProjectSource& operator=(const ProjectSource&) = delete;
    ~ProjectSource();

    // What the render lasts: the range's length, else the project's.
    std::int64_t durationMs() const;
    VideoSource* video();
    // The mix's rate and channels (the sample format -1: the mixer's); always some, as a
    // clip source's with sound.
    std::optional<AudioFormat> inputAudio() const;
    // The sound converted to `format`. Made at the first call, whose format counts.
    AudioSource* audio(const AudioFormat& format);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
