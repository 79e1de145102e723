#include "service/launcher/LookAndFeelManagerStub.h"

LookAndFeelManagerStub::LookAndFeelManagerStub()
    : currentLocale("en_US")
    , availableLocales{"en_US"}
    , currentLook("Default")
    , availableLooks{"Default"} {}

LookAndFeelManagerStub::~LookAndFeelManagerStub() = default;

void LookAndFeelManagerStub::Initialize() {}

const std::string& LookAndFeelManagerStub::GetCurrentLocale() const {
    return currentLocale;
}

const std::list<std::string>& LookAndFeelManagerStub::GetAvailableLocales() const {
    return availableLocales;
}

const std::list<std::string>& LookAndFeelManagerStub::GetAvailableLooks() const {
    return availableLooks;
}

void LookAndFeelManagerStub::SetCurrentLocale(const std::string&) {}

void LookAndFeelManagerStub::SetCurrentLook(const std::string&) {}

const std::string& LookAndFeelManagerStub::GetCurrentLook() const {
    return currentLook;
}

std::string LookAndFeelManagerStub::GetDefaultLook() const {
    return currentLook;
}

void LookAndFeelManagerStub::ApplyLook() {}

std::string LookAndFeelManagerStub::GetStyleSheet() const {
    return {};
}

std::string LookAndFeelManagerStub::GetDefaultLocale() const {
    return currentLocale;
}

void LookAndFeelManagerStub::ApplyLocale() {}

void LookAndFeelManagerStub::ReloadLooks() {}
