#pragma once

#include "platform/export/Exporter.h"

#include <QtGlobal>
#include <nlohmann/json.hpp>
#include <string>

// The JSON values an export emits, as a person reads them and a program parses them.
namespace EditorService::ExportValues {

// {"export": {"output", "skipped": true}}.
nlohmann::json skipped(const std::string& output);
// {"export": {"output", "queued": true, "ahead"}}: waiting for a render-job place behind
// `ahead` other exports.
nlohmann::json queued(const std::string& output, int ahead);
// {"export": {"output", "progress", "frames", "fps"}}, the share done to three decimals and the
// frames per second to one.
nlohmann::json progress(const std::string& output, const Export::ExportProgress& progress);
// {"export": {"input", "output", "done": true, "frames", "duration_ms", "bytes", "video",
// "audio", "started_ms", "finished_ms"}}, "audio" null for an output without audio.
nlohmann::json done(const Export::ExportSettings& settings, const Export::ExportResult& result,
                    qint64 startedMs, qint64 finishedMs);

// The value rounded half away from zero to that many decimals.
double rounded(double value, int decimals);

} // namespace EditorService::ExportValues
