#include "platform/editorlogic/ExecutorFactory.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <QFileInfo>

namespace Core {

ExecutorFactory::ExecutorFactory() {
    Velmor::Testing::Probe::hit("Core::ExecutorFactory::ExecutorFactory");
    Velmor::Testing::CallLog::record("Core::ExecutorFactory::ExecutorFactory");
}

ExecutorFactory::~ExecutorFactory() {
    Velmor::Testing::CallLog::record("Core::ExecutorFactory::~ExecutorFactory");
}

QString ExecutorFactory::fileParserFor(const QString& path) const {
    const QFileInfo file(path);
    if (!file.isFile())
        return {};
    return QStringLiteral("FileParser:") + file.suffix().toLower();
}

QString ExecutorFactory::videoDecoderFor(const QString& codec) const {
    return QStringLiteral("VideoDecoder:") + codec;
}

QString ExecutorFactory::audioDecoderFor(const QString& codec) const {
    return QStringLiteral("AudioDecoder:") + codec;
}

} // namespace Core
