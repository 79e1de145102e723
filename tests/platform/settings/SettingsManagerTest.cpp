#include "platform/settings/SettingsManager.h"

#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

using EditorService::Testing::FailedWith;
using Velmor::App::SettingsManager;
using Velmor::Testing::CallLog;

namespace {

// Keeps the user's own settings out of reach: the stores of a test live in a directory of its own.
class SettingsManagerTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(userDirectory.isValid());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, userDirectory.path());
        CallLog::clear();
    }

    QTemporaryDir userDirectory;
};

} // namespace

TEST_F(SettingsManagerTest, KeepsItsIdAndOrganization) {
    const SettingsManager settings("ReelSmith", "Velmor");
    EXPECT_EQ(settings.GetSettingsId(), "ReelSmith");
    EXPECT_EQ(settings.GetOrganization(), "Velmor");
}

TEST_F(SettingsManagerTest, FileIsNamedAfterTheOrganizationAndTheId) {
    const SettingsManager settings("ReelSmith", "Velmor");
    EXPECT_EQ(settings.GetFileName(), QDir(userDirectory.path()).filePath("Velmor/ReelSmith.ini"));
}

TEST_F(SettingsManagerTest, GivesTheDefaultForAKeyItLacks) {
    const SettingsManager settings("ReelSmith", "Velmor");
    EXPECT_FALSE(settings.Contains("Export/LastPreset"));
    EXPECT_EQ(settings.GetValue("Export/LastPreset", "none").toString(), "none");
}

TEST_F(SettingsManagerTest, GivesBackWhatWasSetAndForgetsWhatWasRemoved) {
    SettingsManager settings("ReelSmith", "Velmor");
    settings.SetValue("Export/LastPreset", "YouTube 1080p");
    EXPECT_TRUE(settings.Contains("Export/LastPreset"));
    EXPECT_EQ(settings.GetValue("Export/LastPreset", {}).toString(), "YouTube 1080p");
    settings.Remove("Export/LastPreset");
    EXPECT_FALSE(settings.Contains("Export/LastPreset"));
}

TEST_F(SettingsManagerTest, SyncWritesWhatAnotherStoreOfTheSameIdReads) {
    SettingsManager writer("ReelSmith", "Velmor");
    writer.SetValue("Render/Jobs", 3);
    writer.Sync();
    EXPECT_TRUE(QFileInfo::exists(writer.GetFileName()));
    const SettingsManager reader("ReelSmith", "Velmor");
    EXPECT_EQ(reader.GetValue("Render/Jobs", 0).toInt(), 3);
}

TEST_F(SettingsManagerTest, StoresOfDifferentIdsAreApart) {
    SettingsManager application("ReelSmith", "Velmor");
    application.SetValue("Render/Jobs", 3);
    application.Sync();
    const SettingsManager product("ReelSmithHeadless", "Velmor");
    EXPECT_FALSE(product.Contains("Render/Jobs"));
}

TEST_F(SettingsManagerTest, SyncThrowsNamingTheFileWhenItCannotBeWritten) {
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, "/dev/null/settings");
    SettingsManager settings("ReelSmith", "Velmor");
    settings.SetValue("Render/Jobs", 3);
    EXPECT_THAT([&] { settings.Sync(); },
                FailedWith<std::runtime_error>(
                    "Cannot write settings file /dev/null/settings/Velmor/ReelSmith.ini"));
}

TEST_F(SettingsManagerTest, ManyThreadsMayUseOneStore) {
    SettingsManager settings("ReelSmith", "Velmor");
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&settings, thread] {
            for (int round = 0; round < 50; ++round)
                settings.SetValue(QStringLiteral("Worker%1/Round").arg(thread), round);
        });
    for (auto& thread : threads)
        thread.join();
    for (int thread = 0; thread < 4; ++thread)
        EXPECT_EQ(settings.GetValue(QStringLiteral("Worker%1/Round").arg(thread), -1).toInt(), 49);
}

TEST_F(SettingsManagerTest, ConstructionAndDestructionAreRecordedWithTheId) {
    {
        SettingsManager application("ReelSmith", "Velmor");
        SettingsManager product("ReelSmithHeadless", "Velmor");
    }
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{"SettingsManager::SettingsManager(ReelSmith)",
                                        "SettingsManager::SettingsManager(ReelSmithHeadless)",
                                        "SettingsManager::~SettingsManager(ReelSmithHeadless)",
                                        "SettingsManager::~SettingsManager(ReelSmith)"}));
}
