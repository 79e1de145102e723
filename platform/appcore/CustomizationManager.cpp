#include "platform/appcore/CustomizationManager.h"

#include "platform/foundation/CallLog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <stdexcept>

using Velmor::Testing::CallLog;

namespace Velmor::App {
namespace {

constexpr char defaultProductVersion[] = "1.0.0";
constexpr char defaultOrganizationName[] = "Velmor";
constexpr char defaultProductName[] = "ReelSmith";
constexpr char defaultApplicationName[] = "ReelSmith Editor";
constexpr char defaultApplicationSettingsId[] = "ReelSmith";
constexpr char defaultProductSettingsId[] = "";

Velmor::ioPath locate(const Velmor::ioPath& path) {
    if (path.IsAbsolute())
        return QFileInfo(path).isFile() ? path : Velmor::ioPath();
    const QStringList directories{QCoreApplication::applicationDirPath(), QDir::currentPath()};
    for (const auto& directory : directories) {
        const QFileInfo candidate(QDir(directory).absoluteFilePath(path));
        if (candidate.isFile())
            return Velmor::ioPath(candidate.absoluteFilePath());
    }
    return Velmor::ioPath();
}

QString readText(const QSettings& settings, const char* key, const char* fallback) {
    const QVariant value = settings.value(QLatin1String(key), QString::fromUtf8(fallback));
    // An unquoted comma makes the INI reader split the value into a list.
    if (value.type() == QVariant::StringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

} // namespace

class CustomizationManager::Private {
public:
    Velmor::ioPath filePath;
    Velmor::Core::Version productVersion;
    std::string organizationName;
    std::string productName;
    std::string applicationName;
    std::string applicationSettingsId;
    std::string productSettingsId;

    void setDefaults();
    void read(const Velmor::ioPath& file);
};

void CustomizationManager::Private::setDefaults() {
    productVersion = Velmor::Core::Version::FromString(QString::fromUtf8(defaultProductVersion));
    organizationName = defaultOrganizationName;
    productName = defaultProductName;
    applicationName = defaultApplicationName;
    applicationSettingsId = defaultApplicationSettingsId;
    productSettingsId = defaultProductSettingsId;
}

void CustomizationManager::Private::read(const Velmor::ioPath& file) {
    if (!QFileInfo(file).isReadable())
        throw std::runtime_error(
            QStringLiteral("Cannot read customization file %1").arg(file).toStdString());
    QSettings settings(file, QSettings::IniFormat);
    settings.setIniCodec("UTF-8");
    if (settings.status() != QSettings::NoError)
        throw std::runtime_error(
            QStringLiteral("Cannot read customization file %1").arg(file).toStdString());
    settings.beginGroup(QStringLiteral("Customization"));
    const QString version = readText(settings, "ProductVersion", defaultProductVersion);
    try {
        productVersion = Velmor::Core::Version::FromString(version);
    } catch (const std::invalid_argument&) {
        throw std::runtime_error(QStringLiteral("Invalid product version \"%1\" in %2")
                                     .arg(version, file)
                                     .toStdString());
    }
    organizationName =
        readText(settings, "OrganizationName", defaultOrganizationName).toStdString();
    productName = readText(settings, "ProductName", defaultProductName).toStdString();
    applicationName = readText(settings, "ApplicationName", defaultApplicationName).toStdString();
    applicationSettingsId =
        readText(settings, "ApplicationSettingsId", defaultApplicationSettingsId).toStdString();
    productSettingsId =
        readText(settings, "ProductSettingsId", defaultProductSettingsId).toStdString();
    filePath = file;
}

CustomizationManager::CustomizationManager(const Velmor::ioPath& path)
    : d(std::make_unique<Private>()) {
    CallLog::record("CustomizationManager::CustomizationManager");
    d->setDefaults();
    const Velmor::ioPath file = locate(path);
    if (!file.IsEmpty())
        d->read(file);
}

CustomizationManager::~CustomizationManager() {
    CallLog::record("CustomizationManager::~CustomizationManager");
}

Velmor::Core::Version CustomizationManager::GetProductVersion() const {
    CallLog::record("CustomizationManager::GetProductVersion");
    return d->productVersion;
}

std::string CustomizationManager::GetOrganizationName() const {
    CallLog::record("CustomizationManager::GetOrganizationName");
    return d->organizationName;
}

std::string CustomizationManager::GetProductName() const {
    CallLog::record("CustomizationManager::GetProductName");
    return d->productName;
}

std::string CustomizationManager::GetApplicationName() const {
    CallLog::record("CustomizationManager::GetApplicationName");
    return d->applicationName;
}

std::string CustomizationManager::GetApplicationSettingsId() const {
    CallLog::record("CustomizationManager::GetApplicationSettingsId");
    return d->applicationSettingsId;
}

std::string CustomizationManager::GetProductSettingsId() const {
    CallLog::record("CustomizationManager::GetProductSettingsId");
    return d->productSettingsId;
}

Velmor::ioPath CustomizationManager::GetFilePath() const {
    return d->filePath;
}

} // namespace Velmor::App
