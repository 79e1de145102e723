#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"

#include <memory>

namespace Velmor::AV {

// Scales and converts pictures with libswscale (bicubic, as ffmpeg's scale filter), in slice
// threads. Keeps its scaling context for as long as the geometry and formats stay the same.
// One thread at a time.
class Scaler {
public:
    // threads: libswscale's slice threads; 0 for as many as the machine has.
    explicit Scaler(int threads = 0);
    ~Scaler();
    Scaler(Scaler&&) noexcept;
    Scaler& operator=(Scaler&&) noexcept;

    // Scales `sourceRegion` of `source` onto `targetRegion` of `target`, converting from the
    // source's pixel format and range to the target's. The target's pixels left of, above and
    // below the region stay as they were; those right of it on its rows may not (libswscale
    // writes rows in blocks of 8 pixels or more), so paint them after scaling. Region offsets
    // in subsampled formats should be multiples of the chroma block.
    // Throws std::out_of_range for a region outside its picture, MediaError when libswscale
    // refuses.
    void scale(const Frame& source, const Rect& sourceRegion, Frame& target,
               const Rect& targetRegion);
    // The whole of source onto the whole of target.
    void scale(const Frame& source, Frame& target);

    // The slice threads of the current context, 0 before the first scale.
    int threads() const;
    // How many contexts were set up so far: one per change of geometry or formats.
    int contextsCreated() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
