#include "platform/settings/SettingsManager.h"

#include "platform/foundation/CallLog.h"

#include <QSettings>
#include <mutex>
#include <stdexcept>

using Velmor::Testing::CallLog;

namespace Velmor::App {

class SettingsManager::Private {
public:
    Private(const QString& settingsId, const QString& organization)
        : settingsId(settingsId)
        , organization(organization)
        , settings(QSettings::IniFormat, QSettings::UserScope, organization, settingsId) {
        settings.setIniCodec("UTF-8");
    }

    const QString settingsId;
    const QString organization;
    mutable std::mutex mutex;
    QSettings settings;
};

SettingsManager::SettingsManager(const QString& settingsId, const QString& organization)
    : d(std::make_unique<Private>(settingsId, organization)) {
    CallLog::record(
        QStringLiteral("SettingsManager::SettingsManager(%1)").arg(settingsId).toStdString());
}

SettingsManager::~SettingsManager() {
    CallLog::record(
        QStringLiteral("SettingsManager::~SettingsManager(%1)").arg(d->settingsId).toStdString());
}

QString SettingsManager::GetSettingsId() const {
    return d->settingsId;
}

QVariant SettingsManager::GetValue(const QString& key, const QVariant& defaultValue) const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->settings.value(key, defaultValue);
}

void SettingsManager::SetValue(const QString& key, const QVariant& value) {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->settings.setValue(key, value);
}

bool SettingsManager::Contains(const QString& key) const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->settings.contains(key);
}

void SettingsManager::Remove(const QString& key) {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->settings.remove(key);
}

void SettingsManager::Sync() {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->settings.sync();
    if (d->settings.status() == QSettings::AccessError)
        throw std::runtime_error(QStringLiteral("Cannot write settings file %1")
                                     .arg(d->settings.fileName())
                                     .toStdString());
}

QString SettingsManager::GetOrganization() const {
    return d->organization;
}

QString SettingsManager::GetFileName() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->settings.fileName();
}

} // namespace Velmor::App
