#include "platform/apputil/Customization.h"

#include "platform/appcore/ILookAndFeelManager.h"
#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;

namespace {

class FakeLookAndFeelManager : public Velmor::App::ILookAndFeelManager {
public:
    explicit FakeLookAndFeelManager(std::string locale)
        : locale(std::move(locale)) {}

    void Initialize() override {}
    const std::string& GetCurrentLocale() const override { return locale; }
    const std::list<std::string>& GetAvailableLocales() const override { return locales; }
    const std::list<std::string>& GetAvailableLooks() const override { return looks; }
    void SetCurrentLocale(const std::string& value) override { locale = value; }
    void SetCurrentLook(const std::string&) override {}
    const std::string& GetCurrentLook() const override { return look; }
    std::string GetDefaultLook() const override { return look; }
    void ApplyLook() override {}
    std::string GetStyleSheet() const override { return {}; }
    std::string GetDefaultLocale() const override { return locale; }
    void ApplyLocale() override {}
    void ReloadLooks() override {}

    std::string locale;
    std::list<std::string> locales;
    std::list<std::string> looks;
    std::string look;
};

void expectNoManager() {
    EXPECT_THAT([&] { Customization::currentLocale(); },
                FailedWith<std::logic_error>("Customization has no look and feel manager"));
}

} // namespace

TEST(CustomizationTest, CurrentLocaleThrowsBeforeInit) {
    EXPECT_TRUE(Customization::lookAndFeelManager().expired());
    expectNoManager();
}

TEST(CustomizationTest, CurrentLocaleIsTheCurrentLocaleOfTheManager) {
    auto manager = std::make_shared<FakeLookAndFeelManager>("en_US");
    Customization::init(manager);
    EXPECT_EQ(Customization::currentLocale(), "en_US");
    manager->SetCurrentLocale("de_DE");
    EXPECT_EQ(Customization::currentLocale(), "de_DE");
}

TEST(CustomizationTest, CurrentLocaleComesFromTheManagerLastGiven) {
    auto first = std::make_shared<FakeLookAndFeelManager>("en_US");
    auto second = std::make_shared<FakeLookAndFeelManager>("fr_FR");
    Customization::init(first);
    Customization::init(second);
    EXPECT_EQ(Customization::currentLocale(), "fr_FR");
}

TEST(CustomizationTest, InitKeepsOnlyAWeakReference) {
    auto manager = std::make_shared<FakeLookAndFeelManager>("en_US");
    std::weak_ptr<FakeLookAndFeelManager> watcher = manager;
    Customization::init(manager);
    EXPECT_EQ(manager.use_count(), 1);
    manager.reset();
    EXPECT_TRUE(watcher.expired());
    EXPECT_TRUE(Customization::lookAndFeelManager().expired());
    expectNoManager();
}

TEST(CustomizationTest, InitAndCurrentLocaleAreRecorded) {
    auto manager = std::make_shared<FakeLookAndFeelManager>("en_US");
    CallLog::clear();
    Customization::init(manager);
    Customization::currentLocale();
    Customization::lookAndFeelManager();
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{"Customization::init", "Customization::currentLocale"}));
}
