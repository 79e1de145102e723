#pragma once

#include <list>
#include <string>

namespace Velmor::App {

// The locales and looks (visual themes) an application offers, and the ones in use.
class ILookAndFeelManager {
public:
    virtual ~ILookAndFeelManager();

    // Loads the available locales and looks.
    virtual void Initialize() = 0;
    virtual const std::string& GetCurrentLocale() const = 0;
    virtual const std::list<std::string>& GetAvailableLocales() const = 0;
    virtual const std::list<std::string>& GetAvailableLooks() const = 0;
    virtual void SetCurrentLocale(const std::string& locale) = 0;
    virtual void SetCurrentLook(const std::string& look) = 0;
    virtual const std::string& GetCurrentLook() const = 0;
    // The look the application falls back to when the chosen one cannot be applied.
    virtual std::string GetDefaultLook() const = 0;
    // Applies the current look to the application's widgets.
    virtual void ApplyLook() = 0;
    // The style sheet of the current look.
    virtual std::string GetStyleSheet() const = 0;
    // The locale the application falls back to when the chosen one is not available.
    virtual std::string GetDefaultLocale() const = 0;
    // Loads the application's translations for the current locale.
    virtual void ApplyLocale() = 0;
    // Rereads the available looks, for example after one has been installed.
    virtual void ReloadLooks() = 0;
};

} // namespace Velmor::App
