#include "platform/editorlogic/FileController.h"

#include "platform/editorlogic/ICreatorFileParser.h"
#include "platform/editorlogic/Workers.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <atomic>

namespace Media {
namespace {

std::atomic<FileController*> s_instance{nullptr};

} // namespace

FileController::FileController(ICreatorFileParser* parsers)
    : parserCreator(parsers) {
    Velmor::Testing::Probe::hit("Media::FileController::FileController");
    jobs = std::make_unique<Task::Workers>(
        1, [this] { emit isBusy(); }, [this] { emit isIdle(); });
    Velmor::Testing::CallLog::record("Media::FileController::FileController");
    s_instance.store(this);
}

FileController::~FileController() {
    FileController* self = this;
    s_instance.compare_exchange_strong(self, nullptr);
    jobs.reset();
    Velmor::Testing::CallLog::record("Media::FileController::~FileController");
}

FileController* FileController::instance() {
    return s_instance.load();
}

ICreatorFileParser* FileController::parsers() const {
    return parserCreator;
}

void FileController::submit(std::function<void()> work, std::function<void()> dropped) {
    jobs->submit(std::move(work), std::move(dropped));
}

void FileController::parse(const QString& path, Parsed done, Wanted wanted) {
    ICreatorFileParser* creator = parserCreator;
    submitOnce<Velmor::AV::MediaInfo>(
        [creator, path] { return creator->createFileParser(path, {})->info(); }, std::move(done),
        std::move(wanted),
        [path] {
            return std::make_exception_ptr(
                ProbeCancelled("Probe cancelled: " + path.toStdString()));
        });
}

} // namespace Media
