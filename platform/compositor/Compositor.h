#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"
#include "platform/av/Rational.h"
#include "platform/compositor/FrameReader.h"
#include "platform/project/Edit.h"

#include <cstdint>
#include <memory>

namespace Composition {

// Composes the pictures of a validated edit, frame by frame: the video track's clips on the
// background (each fitted by its mode, or moved by its pan-and-zoom), two clips drawn by their
// transition where they overlap, then the overlay tracks from the first to the last, each clip
// with its opacity and fades. A frame depends on the edit and its index alone, never on which
// frames were composed before: frames may be asked for in any order, and frame t composed alone
// equals frame t of a run. Media are read through `readers`, one reader for each clip that
// shows, let go once the clip no longer shows. One thread at a time.
class Compositor {
public:
    // `edit` must be validated (Project::validateEdit).
    Compositor(Project::Edit edit, std::shared_ptr<IFrameReaders> readers);
    ~Compositor();

    const Project::Edit& edit() const;
    Velmor::AV::Size size() const;
    Velmor::AV::Rational frameRate() const;
    // Frames that start before the project's end.
    std::int64_t frameCount() const;

    // Output frame `index`: a yuv420p picture of the output's size, its timestamp the index (in
    // frames of the output's rate). Throws std::out_of_range "Frame <i> is not in the project
    // (<n> frames)" and what reading the media throws.
    Velmor::AV::Frame frame(std::int64_t index);
    // How many readers are open now.
    int openReaders() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Composition
