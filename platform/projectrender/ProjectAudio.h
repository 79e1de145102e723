#pragma once

#include "platform/render/AudioSource.h"

#include <cstdint>
#include <memory>

namespace Mixing {
class Mixer;
}

namespace Velmor::Render {

class Stop;

// The sound of a project from the mixer, `count` samples of the project's rate from where the
// mixer starts, converted to `format` (an encoder's) when the mixer's shape is another, timed
// from 0.
//
// One thread at a time; the mixer and `stop` must outlive it.
class ProjectAudio : public AudioSource {
public:
    // Throws MediaError "Can not resample to <rate> Hz: <reason>" for a format libswresample
    // refuses.
    ProjectAudio(Mixing::Mixer& mixer, std::int64_t count, const AudioFormat& format,
                 const Stop& stop);
    ~ProjectAudio() override;

    AudioFormat format() const override;
    // Throws what mixing throws, and Cancelled when the render stops.
    bool next(AV::Frame& frame) override;
    void finish() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
