#include "platform/foundation/AppLocations.h"

#include "platform/foundation/CallLog.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <gtest/gtest.h>

using Velmor::Core::AppLocations;
using Velmor::Testing::CallLog;

namespace {

class AppLocationsTest : public testing::Test {
protected:
    void SetUp() override {
        QCoreApplication::setOrganizationName("Velmor");
        QCoreApplication::setApplicationName("ReelSmith");
        CallLog::clear();
    }
};

} // namespace

TEST_F(AppLocationsTest, GetLocationsGivesOneProcessWideObject) {
    EXPECT_EQ(&AppLocations::GetLocations(), &AppLocations::GetLocations());
}

TEST_F(AppLocationsTest, SettingsLocationIsTheApplicationsConfigurationDirectory) {
    const auto location = AppLocations::GetLocations().GetSettingsLocation();
    EXPECT_EQ(location,
              Velmor::ioPath(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)));
    EXPECT_TRUE(location.ToQString().endsWith("/Velmor/ReelSmith"))
        << location.ToQString().toStdString();
}

TEST_F(AppLocationsTest, FontsLocationIsFontsInTheApplicationsDataDirectory) {
    const auto location = AppLocations::GetLocations().GetFontsLocation();
    EXPECT_EQ(location,
              Velmor::ioPath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                             + "/fonts"));
    EXPECT_TRUE(location.ToQString().endsWith("/Velmor/ReelSmith/fonts"))
        << location.ToQString().toStdString();
}

TEST_F(AppLocationsTest, LocationsFollowTheIdentityTheApplicationHasWhenAsked) {
    QCoreApplication::setApplicationName("ReelSmith Pro");
    EXPECT_TRUE(AppLocations::GetLocations().GetSettingsLocation().ToQString().endsWith(
        "/Velmor/ReelSmith Pro"));
    EXPECT_TRUE(AppLocations::GetLocations().GetFontsLocation().ToQString().endsWith(
        "/Velmor/ReelSmith Pro/fonts"));
}

TEST_F(AppLocationsTest, EachLocationOperationIsRecorded) {
    AppLocations::GetLocations().GetSettingsLocation();
    AppLocations::GetLocations().GetFontsLocation();
    EXPECT_EQ(CallLog::entries(), (std::vector<std::string>{"AppLocations::GetSettingsLocation",
                                                            "AppLocations::GetFontsLocation"}));
}
