#include "platform/appcore/CustomizationManager.h"

#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::App::CustomizationManager;
using Velmor::Core::Version;
using Velmor::Testing::CallLog;

namespace {

const QString fileName = QStringLiteral("ReelSmithCustom.ini");

void writeFile(const QString& path, const QByteArray& contents) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    file.write(contents);
}

// Runs each test in a working directory of its own, put back afterwards.
class CustomizationManagerTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(workingDirectory.isValid());
        previousDirectory = QDir::currentPath();
        ASSERT_TRUE(QDir::setCurrent(workingDirectory.path()));
        CallLog::clear();
    }

    void TearDown() override { QDir::setCurrent(previousDirectory); }

    QString inWorkingDirectory(const QString& name) const {
        return QDir::current().absoluteFilePath(name);
    }

    QTemporaryDir workingDirectory;
    QString previousDirectory;
};

void expectDefaults(const CustomizationManager& manager) {
    EXPECT_EQ(manager.GetProductVersion(), (Version{1, 0, 0, 0}));
    EXPECT_EQ(manager.GetOrganizationName(), "Velmor");
    EXPECT_EQ(manager.GetProductName(), "ReelSmith");
    EXPECT_EQ(manager.GetApplicationName(), "ReelSmith Editor");
    EXPECT_EQ(manager.GetApplicationSettingsId(), "ReelSmith");
    EXPECT_EQ(manager.GetProductSettingsId(), "");
}

} // namespace

TEST_F(CustomizationManagerTest, DefaultsStandWhenNoFileIsFound) {
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    expectDefaults(manager);
    EXPECT_TRUE(manager.GetFilePath().IsEmpty());
}

TEST_F(CustomizationManagerTest, ReadsEveryKeyOfAFileInTheWorkingDirectory) {
    writeFile(inWorkingDirectory(fileName), "[Customization]\n"
                                            "ProductVersion=2.5.1.77\n"
                                            "OrganizationName=Acme Studios\n"
                                            "ProductName=ReelSmith Pro\n"
                                            "ApplicationName=ReelSmith Pro Editor\n"
                                            "ApplicationSettingsId=ReelSmithPro\n"
                                            "ProductSettingsId=ReelSmithProHeadless\n");
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    EXPECT_EQ(manager.GetProductVersion(), (Version{2, 5, 1, 77}));
    EXPECT_EQ(manager.GetOrganizationName(), "Acme Studios");
    EXPECT_EQ(manager.GetProductName(), "ReelSmith Pro");
    EXPECT_EQ(manager.GetApplicationName(), "ReelSmith Pro Editor");
    EXPECT_EQ(manager.GetApplicationSettingsId(), "ReelSmithPro");
    EXPECT_EQ(manager.GetProductSettingsId(), "ReelSmithProHeadless");
    EXPECT_EQ(manager.GetFilePath(), Velmor::ioPath(inWorkingDirectory(fileName)));
}

TEST_F(CustomizationManagerTest, DefaultsStandForTheKeysAFileLacks) {
    writeFile(inWorkingDirectory(fileName), "[Customization]\nProductName=ReelSmith Lite\n");
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    EXPECT_EQ(manager.GetProductName(), "ReelSmith Lite");
    EXPECT_EQ(manager.GetProductVersion(), (Version{1, 0, 0, 0}));
    EXPECT_EQ(manager.GetOrganizationName(), "Velmor");
    EXPECT_EQ(manager.GetApplicationName(), "ReelSmith Editor");
    EXPECT_EQ(manager.GetApplicationSettingsId(), "ReelSmith");
    EXPECT_EQ(manager.GetProductSettingsId(), "");
}

TEST_F(CustomizationManagerTest, KeysOutsideTheCustomizationGroupAreIgnored) {
    writeFile(inWorkingDirectory(fileName), "ProductName=Loose\n[Other]\nProductName=Elsewhere\n");
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    expectDefaults(manager);
    EXPECT_EQ(manager.GetFilePath(), Velmor::ioPath(inWorkingDirectory(fileName)));
}

TEST_F(CustomizationManagerTest, AnEmptyFileLeavesTheDefaults) {
    writeFile(inWorkingDirectory(fileName), "");
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    expectDefaults(manager);
}

TEST_F(CustomizationManagerTest, AnEmptyProductSettingsIdIsKeptEmpty) {
    writeFile(inWorkingDirectory(fileName), "[Customization]\nProductSettingsId=\n");
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    EXPECT_EQ(manager.GetProductSettingsId(), "");
}

TEST_F(CustomizationManagerTest, ReadsValuesAsUtf8) {
    writeFile(inWorkingDirectory(fileName),
              QStringLiteral("[Customization]\nOrganizationName=Vélmor Ateliér\n").toUtf8());
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    EXPECT_EQ(manager.GetOrganizationName(), QStringLiteral("Vélmor Ateliér").toStdString());
}

TEST_F(CustomizationManagerTest, ReadsValuesHoldingACommaWhetherQuotedOrNot) {
    writeFile(inWorkingDirectory(fileName), "[Customization]\n"
                                            "OrganizationName=\"Velmor, Inc.\"\n"
                                            "ProductName=ReelSmith, Studio Edition\n");
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    EXPECT_EQ(manager.GetOrganizationName(), "Velmor, Inc.");
    EXPECT_EQ(manager.GetProductName(), "ReelSmith, Studio Edition");
}

TEST_F(CustomizationManagerTest, ReadsAnAbsolutePathAsItIs) {
    QTemporaryDir elsewhere;
    const QString path = QDir(elsewhere.path()).absoluteFilePath("Branding.ini");
    writeFile(path, "[Customization]\nProductName=Branded\n");
    writeFile(inWorkingDirectory("Branding.ini"), "[Customization]\nProductName=Local\n");
    const CustomizationManager manager{Velmor::ioPath(path)};
    EXPECT_EQ(manager.GetProductName(), "Branded");
    EXPECT_EQ(manager.GetFilePath(), Velmor::ioPath(path));
}

TEST_F(CustomizationManagerTest, AnAbsolutePathWithNoFileLeavesTheDefaults) {
    writeFile(inWorkingDirectory(fileName), "[Customization]\nProductName=Local\n");
    const CustomizationManager manager{Velmor::ioPath(inWorkingDirectory("missing/" + fileName))};
    expectDefaults(manager);
    EXPECT_TRUE(manager.GetFilePath().IsEmpty());
}

TEST_F(CustomizationManagerTest, ADirectoryOfTheFilesNameIsNoFile) {
    ASSERT_TRUE(QDir::current().mkdir(fileName));
    const CustomizationManager manager{Velmor::ioPath(fileName)};
    expectDefaults(manager);
    EXPECT_TRUE(manager.GetFilePath().IsEmpty());
}

TEST_F(CustomizationManagerTest, AMalformedProductVersionThrowsNamingTheFile) {
    writeFile(inWorkingDirectory(fileName), "[Customization]\nProductVersion=1.x\n");
    EXPECT_THAT(
        [&] { CustomizationManager manager{Velmor::ioPath(fileName)}; },
        FailedWith<std::runtime_error>(QStringLiteral("Invalid product version \"1.x\" in %1")
                                           .arg(inWorkingDirectory(fileName))
                                           .toStdString()));
}

TEST_F(CustomizationManagerTest, AFileThatIsNoIniFileThrowsNamingTheFile) {
    writeFile(inWorkingDirectory(fileName), "[Customization\nProductName=Broken\n");
    EXPECT_THAT([&] { CustomizationManager manager{Velmor::ioPath(fileName)}; },
                FailedWith<std::runtime_error>(QStringLiteral("Cannot read customization file %1")
                                                   .arg(inWorkingDirectory(fileName))
                                                   .toStdString()));
}

TEST_F(CustomizationManagerTest, ConstructionDestructionAndEachGetterAreRecorded) {
    {
        const CustomizationManager manager{Velmor::ioPath(fileName)};
        manager.GetProductVersion();
        manager.GetOrganizationName();
        manager.GetProductName();
        manager.GetApplicationName();
        manager.GetApplicationSettingsId();
        manager.GetProductSettingsId();
    }
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{"CustomizationManager::CustomizationManager",
                                        "CustomizationManager::GetProductVersion",
                                        "CustomizationManager::GetOrganizationName",
                                        "CustomizationManager::GetProductName",
                                        "CustomizationManager::GetApplicationName",
                                        "CustomizationManager::GetApplicationSettingsId",
                                        "CustomizationManager::GetProductSettingsId",
                                        "CustomizationManager::~CustomizationManager"}));
}

namespace {

// A copy of the probe program in a directory of its own, so that a customization file can be
// put beside the executable without touching the build tree.
class CustomizationBesideExecutableTest : public CustomizationManagerTest {
protected:
    void SetUp() override {
        CustomizationManagerTest::SetUp();
        ASSERT_TRUE(executableDirectory.isValid());
        probe = QDir(executableDirectory.path()).absoluteFilePath("customization_probe");
        ASSERT_TRUE(QFile::copy(CUSTOMIZATION_PROBE, probe));
        ASSERT_TRUE(QFile::setPermissions(probe, QFile::permissions(CUSTOMIZATION_PROBE)));
    }

    QString besideExecutable(const QString& name) const {
        return QDir(QFileInfo(executableDirectory.path()).canonicalFilePath())
            .absoluteFilePath(name);
    }

    QStringList runProbe(const QString& argument) {
        QProcess process;
        process.setWorkingDirectory(workingDirectory.path());
        process.start(probe, {argument});
        EXPECT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return QString::fromUtf8(process.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }

    QTemporaryDir executableDirectory;
    QString probe;
};

} // namespace

TEST_F(CustomizationBesideExecutableTest, TheFileBesideTheExecutableIsRead) {
    writeFile(besideExecutable(fileName),
              "[Customization]\nProductVersion=3.1\nProductName=Beside\n");
    EXPECT_EQ(runProbe(fileName), (QStringList{"3.1.0.0", "Beside", besideExecutable(fileName)}));
}

TEST_F(CustomizationBesideExecutableTest, TheFileBesideTheExecutableWinsOverTheWorkingDirectory) {
    writeFile(besideExecutable(fileName), "[Customization]\nProductName=Beside\n");
    writeFile(inWorkingDirectory(fileName), "[Customization]\nProductName=Working\n");
    EXPECT_EQ(runProbe(fileName).value(1), "Beside");
}

TEST_F(CustomizationBesideExecutableTest,
       TheWorkingDirectoryIsSearchedWhenNothingIsBesideTheExecutable) {
    writeFile(inWorkingDirectory(fileName), "[Customization]\nProductName=Working\n");
    EXPECT_EQ(runProbe(fileName),
              (QStringList{"1.0.0.0", "Working", inWorkingDirectory(fileName)}));
}

TEST_F(CustomizationBesideExecutableTest, DefaultsStandWhenNeitherPlaceHoldsTheFile) {
    EXPECT_EQ(runProbe(fileName), (QStringList{"1.0.0.0", "ReelSmith"}));
}
