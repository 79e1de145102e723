#include "media/ExportRun.h"

namespace EditorService {
namespace {

class PipelineExport : public ExportRun {
public:
    explicit PipelineExport(const Export::ExportSettings& settings)
        : m_exporter(settings) {}

    const std::string& temporaryPath() const override { return m_exporter.temporaryPath(); }
    Export::ExportResult run(const Export::Exporter::Progress& progress) override {
        return m_exporter.run(progress);
    }
    void cancel() override { m_exporter.cancel(); }

private:
    Export::Exporter m_exporter;
};

} // namespace

ExportRunFactory pipelineExports() {
    return [](const Export::ExportSettings& settings) -> std::unique_ptr<ExportRun> {
        return std::make_unique<PipelineExport>(settings);
    };
}

} // namespace EditorService
