#include "media/ExportValues.h"

#include "media/ExistingOutput.h"
#include "media/QueuedValue.h"

#include <cmath>

namespace EditorService::ExportValues {

using Json = nlohmann::json;

Json skipped(const std::string& output) {
    return ExistingOutput::skipped("export", output);
}

Json queued(const std::string& output, int ahead) {
    return queuedValue("export", "output", output, ahead);
}

Json progress(const std::string& output, const Export::ExportProgress& progress) {
    return {{"export",
             {{"output", output},
              {"progress", rounded(progress.progress, 3)},
              {"frames", progress.frames},
              {"fps", rounded(progress.fps, 1)}}}};
}

Json done(const Export::ExportSettings& settings, const Export::ExportResult& result,
          qint64 startedMs, qint64 finishedMs) {
    Json video;
    if (result.video) {
        video = {{"codec", result.video->codec},
                 {"width", result.video->width},
                 {"height", result.video->height},
                 {"bit_rate", result.video->bitRate}};
    }
    Json audio;
    if (result.audio) {
        audio = {{"codec", result.audio->codec},
                 {"sample_rate", result.audio->sampleRate},
                 {"channels", result.audio->channels},
                 {"bit_rate", result.audio->bitRate}};
    }
    return {{"export",
             {{"input", settings.input},
              {"output", settings.output},
              {"done", true},
              {"frames", result.frames},
              {"duration_ms", result.durationMs},
              {"bytes", result.bytes},
              {"video", video},
              {"audio", audio},
              {"started_ms", startedMs},
              {"finished_ms", finishedMs}}}};
}

double rounded(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    return std::round(value * scale) / scale;
}

} // namespace EditorService::ExportValues
