#include "platform/content/ImportContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Import {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("Import::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Import::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Import::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    return {QStringLiteral("Video"), QStringLiteral("Audio"), QStringLiteral("Image"),
            QStringLiteral("Project")};
}

} // namespace Import
