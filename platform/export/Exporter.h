#pragma once

#include "platform/model/Range.h"
#include "platform/preset/Preset.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Project {
struct Edit;
}

namespace Export {

// What an export is to do: read `input` (a media file, or a project file that it composes and
// mixes), and write `output` as the ready preset says (container, video codec, frame size and
// fill mode, bitrate mode and rates, audio rate).
struct ExportSettings {
    std::string input;
    std::string output;
    Preset preset;
    // Milliseconds from the start of the input; a default range exports the whole input.
    Types::Range range;
    // Whether a file that stands at the output when the export is complete is replaced; if not,
    // the export fails with Velmor::OutputExists "Output file exists: <output>".
    bool overwrite = false;
    // The project `input` holds, read and validated already (as the export's parse does, so
    // that neither the project nor its media are read twice); none to have run() read it.
    std::shared_ptr<const Project::Edit> project = nullptr;

    // A part of a longer export, made to be joined with the others by copying.
    struct Part {
        // Exact to the picture: microseconds from the start of the input, from the first
        // picture's time to the next part's; replaces `range` unless empty.
        std::int64_t fromUs = 0;
        std::int64_t toUs = 0;
        // Which of the streams the part has.
        bool video = true;
        bool audio = true;
    };
    // None for a whole export. A part's video is encoded with headers that depend on the
    // settings alone.
    std::optional<Part> part = std::nullopt;
};

// How far a running export is.
struct ExportProgress {
    // From 0 to 1: the share of the output's duration encoded so far.
    double progress = 0;
    std::int64_t frames = 0;
    // Video frames encoded per second since the encoding began.
    double fps = 0;
};

// What a finished export wrote.
struct ExportResult {
    struct Video {
        std::string codec; // the codec's short name, "h264" or "hevc"
        int width = 0;
        int height = 0;
        std::int64_t bitRate = 0;
    };
    struct Audio {
        std::string codec; // "aac"
        int sampleRate = 0;
        int channels = 0;
        std::int64_t bitRate = 0;
    };

    std::int64_t frames = 0;
    std::int64_t durationMs = 0;
    std::int64_t bytes = 0;
    // None for an input without video: its sound alone is written.
    std::optional<Video> video;
    // None for an input without audio.
    std::optional<Audio> audio;
};

// One export: the pictures decoded, resized and encoded each on a thread of its own, the sound
// on another, joined by bounded queues, so that memory stays flat whatever the input's length.
//
// It writes the output through a Velmor::OutputFile: a temporary beside the output, named
// "<output>.reelsmith-partial-<host>-<pid>-<letters>", flushed to disk and renamed into place
// only when the output is complete, so that there is never a partial file at the output path.
// Whatever ends the export other than success removes the temporary.
class Exporter {
public:
    using Progress = std::function<void(const ExportProgress& progress)>;

    explicit Exporter(ExportSettings settings);
    Exporter(const Exporter&) = delete;
    Exporter& operator=(const Exporter&) = delete;
    // Cancels a running export and waits for its threads.
    ~Exporter();

    // Runs the export to its end on the calling thread and the stages' threads, calling
    // `progress` from time to time on one of them. A project is read and validated (unless the
    // settings hold it so already) and checked against the plug-ins first: it fails before anything
    // is written. Throws the failure that ended it (among them Project::ProjectError for a bad
    // project, and Velmor::WriteError "Can not write <output>: <reason>", at once for a folder that
    // is missing or can not be written), and ExportCancelled after cancel().
    ExportResult run(const Progress& progress);
    // Ends a running export within one frame's work, from any thread; a blocked read of the
    // input gives up too.
    void cancel();

private:
    class Private;
    std::unique_ptr<Private> d;
};

// The failure an export cancelled from outside ends with: "Export cancelled: <output>".
class ExportCancelled : public std::runtime_error {
public:
    explicit ExportCancelled(const std::string& output);
};

} // namespace Export
