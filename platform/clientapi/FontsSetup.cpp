#include "platform/clientapi/FontsSetup.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <QDir>
#include <mutex>

namespace Velmor::ClientAPI {
namespace {

struct Registry {
    std::mutex mutex;
    QStringList fonts;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

} // namespace

void FontsSetup(const ioPath& fontsDirectory) {
    Testing::CallLog::record("FontsSetup");
    Testing::Probe::hit("FontsSetup");
    if (fontsDirectory.IsEmpty())
        return;
    const QDir directory(fontsDirectory.ToQString());
    const QFileInfoList files = directory.entryInfoList(
        {QStringLiteral("*.ttf"), QStringLiteral("*.otf"), QStringLiteral("*.ttc")},
        QDir::Files | QDir::Readable, QDir::Name);
    std::lock_guard<std::mutex> lock(registry().mutex);
    for (const QFileInfo& file : files) {
        const QString path = file.absoluteFilePath();
        if (!registry().fonts.contains(path))
            registry().fonts.append(path);
    }
}

QStringList RegisteredFonts() {
    std::lock_guard<std::mutex> lock(registry().mutex);
    return registry().fonts;
}

} // namespace Velmor::ClientAPI
