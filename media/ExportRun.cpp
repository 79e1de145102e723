#include "media/ExportRun.h"

namespace EditorService {
namespace {

class PipelineExport : public ExportRun {
public:
    explicit PipelineExport(const Export::ExportSettings& settings)
        : exporter(settings) {}

    Export::ExportResult run(const Export::Exporter::Progress& progress) override {
        return exporter.run(progress);
    }
    void cancel() override { exporter.cancel(); }

private:
    Export::Exporter exporter;
};

} // namespace

ExportRunFactory pipelineExports() {
    return [](const Export::ExportSettings& settings) -> std::unique_ptr<ExportRun> {
        return std::make_unique<PipelineExport>(settings);
    };
}

std::exception_ptr exportCancelled(const std::string& output) {
    return std::make_exception_ptr(Export::ExportCancelled(output));
}

} // namespace EditorService
