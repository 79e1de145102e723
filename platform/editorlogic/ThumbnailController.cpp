#include "platform/editorlogic/ThumbnailController.h"

#include "platform/editorlogic/ThumbnailExtractor.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Thumbnail {

Controller::Controller(std::shared_ptr<Extractor> extractor)
    : m_extractor(std::move(extractor)) {
    Velmor::Testing::Probe::hit("Thumbnail::Controller::Controller");
    Velmor::Testing::CallLog::record("Thumbnail::Controller::Controller");
}

Controller::~Controller() {
    Velmor::Testing::CallLog::record("Thumbnail::Controller::~Controller");
}

const std::shared_ptr<Extractor>& Controller::extractor() const {
    return m_extractor;
}

} // namespace Thumbnail
