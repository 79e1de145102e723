#include "platform/package/PackageDirectory.h"

#include "tests/platform/package/PackageTestFiles.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace Package;
using Package::Testing::writeFile;

class PackageDirectoryTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(directory.isValid()); }

    QTemporaryDir directory;
};

TEST_F(PackageDirectoryTest, TheNameOfAManifestIsItsNameField) {
    const QString file = writeFile(directory.path(), "pack.json", R"({"name": "Summer Pack"})");
    EXPECT_EQ(readManifest(file), QString("Summer Pack"));
}

TEST_F(PackageDirectoryTest, AManifestWithoutANameIsNamedAfterItsFile) {
    EXPECT_EQ(readManifest(writeFile(directory.path(), "winter.json", "{}")), QString("winter"));
    EXPECT_EQ(readManifest(writeFile(directory.path(), "blank.json", R"({"name": ""})")),
              QString("blank"));
    EXPECT_EQ(readManifest(writeFile(directory.path(), "number.json", R"({"name": 7})")),
              QString("number"));
}

TEST_F(PackageDirectoryTest, AFileThatIsNoJsonObjectIsNoManifest) {
    EXPECT_EQ(readManifest(writeFile(directory.path(), "list.json", "[1, 2]")), std::nullopt);
    EXPECT_EQ(readManifest(writeFile(directory.path(), "broken.json", "{")), std::nullopt);
    EXPECT_EQ(readManifest(writeFile(directory.path(), "pack.txt", "{}")), std::nullopt);
    EXPECT_EQ(readManifest(directory.filePath("missing.json")), std::nullopt);
}

TEST_F(PackageDirectoryTest, ReadPackagesListsTheManifestsInFileNameOrder) {
    writeFile(directory.path(), "b.json", R"({"name": "Bravo"})");
    writeFile(directory.path(), "a.json", "{}");
    writeFile(directory.path(), "c.json", "not json");
    writeFile(directory.path(), "d.txt", "{}");
    EXPECT_EQ(readPackages(directory.path()), (QStringList{"a", "Bravo"}));
}

TEST_F(PackageDirectoryTest, AMissingDirectoryHasNoPackages) {
    EXPECT_TRUE(readPackages(directory.filePath("nowhere")).isEmpty());
}

TEST_F(PackageDirectoryTest, ThePackageDirectoryIsBesideTheApplicationUnlessSet) {
    const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath("packages");
    setPackageDirectory(QString());
    EXPECT_EQ(packageDirectory(), beside);
    setPackageDirectory(directory.path());
    EXPECT_EQ(packageDirectory(), directory.path());
    setPackageDirectory(QString());
    EXPECT_EQ(packageDirectory(), beside);
}
