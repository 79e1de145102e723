#pragma once

#include "platform/render/VideoSource.h"

#include <memory>

namespace Velmor::Render {

// The pictures of another video source as they are meant to be seen (AV::Upright): turned by the
// source's rotation, in square pixels at its display size; they pass through untouched when
// the source shows as it is stored. Its format has no rotation and square pixels.
//
// One thread at a time pulls it, and so pulls `source` on that thread; `source` must outlive it.
class UprightVideo : public VideoSource {
public:
    // Throws MediaError as AV::Upright does.
    explicit UprightVideo(VideoSource& source);
    ~UprightVideo() override;

    VideoFormat format() const override;
    bool next(AV::Frame& frame) override;
    void finish() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
