#pragma once

#include <QString>
#include <QVariant>

namespace Velmor::App {

// A persistent store of settings: values under slash-separated keys ("Export/LastPreset").
class ISettingsManager {
public:
    virtual ~ISettingsManager();

    // The id the store was made for; it names the store's file.
    virtual QString GetSettingsId() const = 0;
    virtual QVariant GetValue(const QString& key, const QVariant& defaultValue) const = 0;
    virtual void SetValue(const QString& key, const QVariant& value) = 0;
    virtual bool Contains(const QString& key) const = 0;
    virtual void Remove(const QString& key) = 0;
    // Writes pending changes to permanent storage and reads changes made by others.
    virtual void Sync() = 0;
};

} // namespace Velmor::App
