#pragma once

#include "platform/proc/SettingsResizer.h"
#include "platform/render/VideoSource.h"

#include <memory>

namespace Velmor::Render {

// The pictures of another video source fitted into the settings' size and pixel format by
// their fill mode (bars true black), with their times. A picture already of that size and
// format passes through sharing its buffers.
//
// One thread at a time pulls it, and so pulls `source` on that thread; `source` must outlive it.
class ResizedVideo : public VideoSource {
public:
    // `threads`: the scaler's slice threads, 0 for as many as the machine has. Throws as
    // Proc::Resizer does for a bad size, mode or format.
    ResizedVideo(VideoSource& source, const Proc::SettingsResizer& settings, int threads = 0);
    ~ResizedVideo() override;

    VideoFormat format() const override;
    bool next(AV::Frame& frame) override;
    void finish() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
