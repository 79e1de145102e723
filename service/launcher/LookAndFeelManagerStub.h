#pragma once

#include "platform/appcore/ILookAndFeelManager.h"

// The look and feel of a process without a user interface: one locale, "en_US", and one look,
// "Default", fixed at construction. What would change or apply them does nothing.
class LookAndFeelManagerStub : public Velmor::App::ILookAndFeelManager {
public:
    LookAndFeelManagerStub();
    ~LookAndFeelManagerStub() override;

    void Initialize() override;
    const std::string& GetCurrentLocale() const override;
    const std::list<std::string>& GetAvailableLocales() const override;
    const std::list<std::string>& GetAvailableLooks() const override;
    void SetCurrentLocale(const std::string& locale) override;
    void SetCurrentLook(const std::string& look) override;
    const std::string& GetCurrentLook() const override;
    std::string GetDefaultLook() const override;
    void ApplyLook() override;
    std::string GetStyleSheet() const override;
    std::string GetDefaultLocale() const override;
    void ApplyLocale() override;
    void ReloadLooks() override;

private:
    const std::string currentLocale;
    const std::list<std::string> availableLocales;
    const std::string currentLook;
    const std::list<std::string> availableLooks;
};
