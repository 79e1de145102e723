#pragma once

#include "platform/export/Exporter.h"

#include <chrono>
#include <functional>
#include <memory>

namespace EditorService {

// Paces the progress of a running export: on a thread of its own it hands on the latest
// progress no sooner than minimumGap after the last it handed on, and the same progress again
// when maximumGap has passed without news, so that a quiet stage never looks like silence.
// The first gap counts from construction. update never waits for emit.
class ProgressPacer {
public:
    using Clock = std::chrono::steady_clock;
    using Emit = std::function<void(const Export::ExportProgress& progress)>;

    static constexpr std::chrono::milliseconds minimumGap{100};
    static constexpr std::chrono::milliseconds maximumGap{400};

    explicit ProgressPacer(Emit emit);
    ProgressPacer(const ProgressPacer&) = delete;
    ProgressPacer& operator=(const ProgressPacer&) = delete;
    // Stops, as stop does.
    ~ProgressPacer();

    // From any thread.
    void update(const Export::ExportProgress& progress);
    // Emits nothing more, and returns once a running emit has returned.
    void stop();

    // When the next value is due after one handed on at `lastEmitted`, with or without news
    // since.
    static Clock::time_point due(Clock::time_point lastEmitted, bool news);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace EditorService
