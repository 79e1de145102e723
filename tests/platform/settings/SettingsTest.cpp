#include "platform/settings/Settings.h"

#include "platform/appcore/CustomizationManager.h"
#include "platform/foundation/CallLog.h"
#include "platform/settings/SettingsManager.h"
#include "tests/support/FailedWith.h"

#include <QSettings>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::App::CustomizationManager;
using Velmor::App::ISettingsManager;
using Velmor::App::SettingsManager;
using Velmor::Testing::CallLog;

namespace {

// The settings' context is process-wide: each test starts from, and leaves, an empty one, as a
// fresh process has it.
class SettingsTest : public testing::Test {
protected:
    void SetUp() override {
        Settings::init(SettingsContext());
        ASSERT_TRUE(userDirectory.isValid());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, userDirectory.path());
        customization = std::make_shared<CustomizationManager>(Velmor::ioPath("/no/such/file.ini"));
        application = std::make_shared<SettingsManager>("ReelSmith", "Velmor");
        product = std::make_shared<SettingsManager>("ReelSmithHeadless", "Velmor");
        CallLog::clear();
    }
    void TearDown() override { Settings::init(SettingsContext()); }

    SettingsContext fullContext() const {
        SettingsContext context;
        context.customizationManager = customization;
        context.productSettings = product;
        context.applicationSettings = application;
        context.settingsLocation = Velmor::ioPath("/home/user/.config/Velmor/ReelSmith");
        return context;
    }

    QTemporaryDir userDirectory;
    std::shared_ptr<Velmor::App::ICustomizationManager> customization;
    std::shared_ptr<ISettingsManager> application;
    std::shared_ptr<ISettingsManager> product;
};

} // namespace

TEST_F(SettingsTest, ContextIsEmptyBeforeInit) {
    const auto context = Settings::context();
    EXPECT_TRUE(context.customizationManager.expired());
    EXPECT_TRUE(context.productSettings.expired());
    EXPECT_TRUE(context.applicationSettings.expired());
    EXPECT_TRUE(context.settingsLocation.IsEmpty());
}

TEST_F(SettingsTest, KeepsWhatInitWasGiven) {
    Settings::init(fullContext());
    const auto context = Settings::context();
    EXPECT_EQ(context.customizationManager.lock(), customization);
    EXPECT_EQ(context.productSettings.lock(), product);
    EXPECT_EQ(context.applicationSettings.lock(), application);
    EXPECT_EQ(context.settingsLocation, Velmor::ioPath("/home/user/.config/Velmor/ReelSmith"));
    EXPECT_EQ(Settings::applicationSettings(), application);
    EXPECT_EQ(Settings::productSettings(), product);
}

TEST_F(SettingsTest, InitKeepsOnlyWeakReferences) {
    Settings::init(fullContext());
    EXPECT_EQ(customization.use_count(), 1);
    EXPECT_EQ(application.use_count(), 1);
    EXPECT_EQ(product.use_count(), 1);
    customization.reset();
    application.reset();
    product.reset();
    const auto context = Settings::context();
    EXPECT_TRUE(context.customizationManager.expired());
    EXPECT_TRUE(context.productSettings.expired());
    EXPECT_TRUE(context.applicationSettings.expired());
}

TEST_F(SettingsTest, OneStoreMayServeAsBoth) {
    auto context = fullContext();
    context.productSettings = application;
    Settings::init(context);
    EXPECT_EQ(Settings::productSettings(), Settings::applicationSettings());
}

TEST_F(SettingsTest, ApplicationSettingsThrowWhenTheStoreIsGone) {
    Settings::init(fullContext());
    application.reset();
    EXPECT_THAT([&] { Settings::applicationSettings(); },
                FailedWith<std::logic_error>("No application settings are available"));
}

TEST_F(SettingsTest, ProductSettingsThrowWhenTheStoreIsGone) {
    Settings::init(fullContext());
    product.reset();
    EXPECT_THAT([&] { Settings::productSettings(); },
                FailedWith<std::logic_error>("No product settings are available"));
}

TEST_F(SettingsTest, ASecondInitReplacesTheContext) {
    Settings::init(fullContext());
    auto other = std::make_shared<SettingsManager>("Other", "Velmor");
    SettingsContext context;
    context.applicationSettings = other;
    Settings::init(context);
    EXPECT_EQ(Settings::applicationSettings(), other);
    EXPECT_TRUE(Settings::context().productSettings.expired());
}

TEST_F(SettingsTest, InitIsRecorded) {
    Settings::init(fullContext());
    Settings::context();
    EXPECT_EQ(CallLog::entries(), std::vector<std::string>{"Settings::init"});
}
