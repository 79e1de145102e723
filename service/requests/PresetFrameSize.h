#pragma once

#include "service/api/EditorServiceExport.h"

#include <QString>
#include <cstdint>

// An export frame size, or the mark that the project's own size is meant: both sides at
// ORIGINAL. A size that nobody set is the original size.
struct EDITORSERVICE_EXPORT PresetFrameSize {
    static constexpr int ORIGINAL = -1;

    PresetFrameSize();
    PresetFrameSize(std::int32_t width, std::int32_t height);

    // Both sides at ORIGINAL; one alone is not enough.
    bool isOriginal() const;
    // Both sides even; 0 counts as even, ORIGINAL does not.
    bool isEven() const;
    bool operator==(const PresetFrameSize& other) const;
    bool operator!=(const PresetFrameSize& other) const { return !(*this == other); }

    // "original", the word that stands for the original size on a command line.
    static QString originalSizeString();

    std::int32_t width;
    std::int32_t height;
};
