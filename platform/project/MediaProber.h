#pragma once

#include "platform/av/Rational.h"

#include <QString>
#include <cstdint>

namespace Project {

// What validating a project needs to know of a media file.
struct MediaFacts {
    // Whole milliseconds; 0 when the file does not say.
    std::int64_t durationMs = 0;
    bool hasVideo = false;
    bool hasAudio = false;
    // A single picture (PNG, JPEG, ...) rather than a video.
    bool isStill = false;
    // Of the best video stream.
    int width = 0;
    int height = 0;
    // 0/1 when the file does not say.
    Velmor::AV::Rational frameRate{0, 1};
};

// Tells the facts of media files, so that a project can be validated before anything renders.
class IMediaProber {
public:
    IMediaProber() = default;
    IMediaProber(const IMediaProber&) = delete;
    IMediaProber& operator=(const IMediaProber&) = delete;
    virtual ~IMediaProber();

    // Throws what opening the file throws, its message naming the file by `file`
    // ("Can not open media file: <file>: No such file or directory").
    virtual MediaFacts probe(const QString& file) const = 0;
};

// Opens files with the media library's demuxer, which reads their headers and a little of
// their streams.
class FileProber : public IMediaProber {
public:
    MediaFacts probe(const QString& file) const override;
};

} // namespace Project
