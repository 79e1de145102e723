#pragma once

#include "platform/proc/SettingsResizer.h"

#include <QString>
#include <cstdint>

namespace Thumbnail {

// One picture to take from a video: the frame on screen at a time, fitted to a size, as PNG.
struct Request {
    QString path;
    QString output;
    // Milliseconds from the start of the file.
    std::int64_t atMilliseconds = 0;
    // The frame's own size when either is below 1.
    int width = -1;
    int height = -1;
    Velmor::Proc::SettingsResizer::CustomModes mode = Velmor::Proc::SettingsResizer::Fit;
    // Whether a file that stands at the output when the picture is ready is replaced; if not,
    // the extraction fails with Velmor::OutputExists.
    bool overwrite = false;
};

// What was taken.
struct Result {
    // The display time of the frame taken, in milliseconds from the start of the file.
    std::int64_t frameMilliseconds = 0;
    int width = 0;
    int height = 0;
};

} // namespace Thumbnail
