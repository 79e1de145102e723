#pragma once

#include "media/SegmentRecord.h"

#include <QString>
#include <vector>

namespace EditorService {

// The parts of a split export, checked to belong together before they are joined.
struct SegmentSet {
    // The video's parts in order, and their records.
    std::vector<QString> videos;
    std::vector<SegmentRecord> records;
    // Empty for an input without sound.
    QString audio;
};

// Reads the records of the folder and checks that every part 0 to N-1 and the sound stand there
// and agree: the same count, preset, range and stream headers, the same input, seen the same,
// and pictures that follow on. Throws Error, the first found of "No segments in <folder>",
// "Segment <K> of <N> is missing in <folder>", "Segment <K> was made with other settings than
// segment 0", "Segment <K> does not follow segment <K - 1> (frame <F> expected, <G> found)", "The
// audio of <folder> is missing", "The audio of <folder> was made with other settings than segment
// 0" and "The input changed since segment 0 was made" (also when the input, still there, has
// another size or modification time now).
SegmentSet checkSegments(const QString& folder);

} // namespace EditorService
