#pragma once

#include "platform/export/Exporter.h"

#include <exception>
#include <functional>
#include <memory>
#include <string>

namespace EditorService {

// One export as the export service drives it, with the operations of Export::Exporter: the
// pipeline's exporter in the product, a stand-in in tests.
class ExportRun {
public:
    virtual ~ExportRun() = default;

    virtual Export::ExportResult run(const Export::Exporter::Progress& progress) = 0;
    virtual void cancel() = 0;
};

using ExportRunFactory =
    std::function<std::unique_ptr<ExportRun>(const Export::ExportSettings& settings)>;

// Makes runs of Export::Exporter.
ExportRunFactory pipelineExports();

// The failure of an export cancelled before it ran or while it ran, the words the pipeline
// uses too: Export::ExportCancelled "Export cancelled: <output>".
std::exception_ptr exportCancelled(const std::string& output);

} // namespace EditorService
