#include "platform/package/PackageDirectory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <mutex>

namespace Package {
namespace {

struct Setting {
    std::mutex mutex;
    std::optional<QString> directory;
};

Setting& setting() {
    static Setting instance;
    return instance;
}

} // namespace

QString packageDirectory() {
    std::lock_guard<std::mutex> lock(setting().mutex);
    if (setting().directory && !setting().directory->isEmpty())
        return *setting().directory;
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("packages"));
}

void setPackageDirectory(const QString& directory) {
    std::lock_guard<std::mutex> lock(setting().mutex);
    setting().directory = directory;
}

std::optional<QString> readManifest(const QString& file) {
    const QFileInfo info(file);
    if (info.suffix() != QLatin1String("json"))
        return std::nullopt;
    QFile manifest(file);
    if (!manifest.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(manifest.readAll());
    if (!document.isObject())
        return std::nullopt;
    const QString name = document.object().value(QStringLiteral("name")).toString();
    if (!name.isEmpty())
        return name;
    return info.completeBaseName();
}

QStringList readPackages(const QString& directory) {
    QStringList packages;
    const QDir dir(directory);
    const QStringList files =
        dir.entryList({QStringLiteral("*.json")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QString& file : files) {
        if (const auto name = readManifest(dir.filePath(file)))
            packages.append(*name);
    }
    return packages;
}

} // namespace Package
