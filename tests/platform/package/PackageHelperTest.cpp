#include "platform/package/PackageHelper.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/package/PackageDirectory.h"
#include "tests/platform/package/PackageTestFiles.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <stdexcept>

using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

TEST(PackageHelperTest, ListsThePackagesOfThePackageDirectoryWhenAsked) {
    QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    Package::setPackageDirectory(directory.path());
    const auto helper = Package::createPackageHelper();
    EXPECT_TRUE(helper->installedPackages().isEmpty());
    Package::Testing::writeFile(directory.path(), "pack.json", "{}");
    EXPECT_EQ(helper->installedPackages(), QStringList{"pack"});
}

TEST(PackageHelperTest, CreationAndDestructionAreRecorded) {
    CallLog::clear();
    Package::createPackageHelper();
    const std::vector<std::string> expected{"Package::createPackageHelper",
                                            "Package::PackageHelper::PackageHelper",
                                            "Package::PackageHelper::~PackageHelper"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST(PackageHelperTest, AnInjectedFailureCreatesNothing) {
    CallLog::clear();
    Probe::failNext("Package::createPackageHelper");
    EXPECT_THROW(Package::createPackageHelper(), std::runtime_error);
    EXPECT_TRUE(CallLog::entries().empty());
}
