#pragma once

#include "platform/settings/ISettingsManager.h"

#include <memory>

namespace Velmor::App {

// A settings store in an INI file of the user's scope, named after the organisation word and
// the settings id (for example ~/.config/Velmor/ReelSmith.ini). Safe to use from any thread.
class SettingsManager : public ISettingsManager {
public:
    SettingsManager(const QString& settingsId, const QString& organization);
    ~SettingsManager() override;

    QString GetSettingsId() const override;
    QVariant GetValue(const QString& key, const QVariant& defaultValue) const override;
    void SetValue(const QString& key, const QVariant& value) override;
    bool Contains(const QString& key) const override;
    void Remove(const QString& key) override;
    // Throws std::runtime_error, naming the file, when the file cannot be written.
    void Sync() override;

    QString GetOrganization() const;
    QString GetFileName() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::App
