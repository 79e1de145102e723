#pragma once

#include <QString>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace EditorService {

// What a part of a split export was made of, kept as JSON beside its file, so that the join can
// tell that the parts belong together: which part, its pictures, its stream's header, the preset
// and range it was made with, and the input as it was then.
struct SegmentRecord {
    // The video's part, or the whole export's sound.
    bool audio = false;
    // The sound's part of an input without sound: it has no file.
    bool silent = false;
    int index = 0;
    int count = 1;
    std::int64_t firstFrame = 0;
    std::int64_t frames = 0;
    // Where its first picture shows, in microseconds from the export's first picture.
    std::int64_t startUs = 0;
    // A hash of what its stream's decoder is set up from.
    std::string header;
    // Preset::toJson, and the range as [start, end] in milliseconds or null.
    nlohmann::json preset;
    nlohmann::json range;
    std::string input;
    std::int64_t inputSize = 0;
    std::int64_t inputModifiedMs = 0;

    // {"index" ("audio" for the sound), "silent", "count", "first_frame", "frames", "start_us",
    // "header", "preset", "range", "input": {"path", "size", "modified_ms"}}.
    nlohmann::json toJson() const;
    // Throws nlohmann::json's exceptions for a record that is not one.
    static SegmentRecord fromJson(const nlohmann::json& value);

    // The record at `path`; none when no file stands there or it is not a record.
    static std::optional<SegmentRecord> read(const QString& path);
    // Writes the record to `path` as OutputFile does, replacing one that stands there. Throws
    // Velmor::WriteError "Can not write <path>: <reason>".
    void write(const QString& path) const;

    // The same input, preset, range and count, and a stream that joins: all but the part.
    bool agreesWith(const SegmentRecord& other) const;
    // The input's size and modification time as both records saw it.
    bool sameInputAs(const SegmentRecord& other) const;
};

} // namespace EditorService
