#include "platform/package/ContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "tests/platform/package/PackageTestFiles.h"
#include "tests/support/FailedWith.h"

#include <QTemporaryDir>
#include <atomic>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

using EditorService::Testing::FailedWith;
using Package::ContentProvider;
using Package::Testing::writeFile;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

constexpr auto generously = std::chrono::seconds(60);

std::vector<std::string> entriesStartingWith(const std::string& prefix) {
    std::vector<std::string> found;
    for (const auto& entry : CallLog::entries()) {
        if (entry.rfind(prefix, 0) == 0)
            found.push_back(entry);
    }
    return found;
}

} // namespace

class ContentProviderTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(directory.isValid());
        Probe::clear();
        CallLog::clear();
    }
    void TearDown() override { Probe::clear(); }

    QTemporaryDir directory;
};

TEST_F(ContentProviderTest, UsesThePackageDirectoryAndAnEmptyLookAndFeelByDefault) {
    Package::setPackageDirectory(directory.path());
    const ContentProvider provider{std::shared_ptr<Velmor::App::ILookAndFeelManager>()};
    EXPECT_EQ(provider.directory(), directory.path());
    EXPECT_EQ(provider.lookAndFeel(), nullptr);
}

TEST_F(ContentProviderTest, LoadsTheManifestsOnAThreadOfItsOwn) {
    writeFile(directory.path(), "a.json", "{}");
    writeFile(directory.path(), "b.json", R"({"name": "Bravo"})");
    std::promise<std::thread::id> loader;
    Probe::onNext("Package::ContentProvider::load",
                  [&loader] { loader.set_value(std::this_thread::get_id()); });
    ContentProvider provider(nullptr, directory.path());
    provider.startLoading();
    provider.waitForFinishLoading();
    EXPECT_NE(loader.get_future().get(), std::this_thread::get_id());
    EXPECT_EQ(provider.packages(), (QStringList{"a", "Bravo"}));
}

TEST_F(ContentProviderTest, WaitForFinishLoadingReturnsOnlyOnceTheLoadingHasEnded) {
    writeFile(directory.path(), "a.json", "{}");
    writeFile(directory.path(), "b.json", "{}");
    std::promise<void> release;
    auto released = release.get_future().share();
    Probe::onNext("Package::ContentProvider::load", [released] { released.wait(); });

    ContentProvider provider(nullptr, directory.path());
    provider.startLoading();
    std::atomic<bool> waited{false};
    std::thread waiter([&] {
        provider.waitForFinishLoading();
        waited = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(waited.load());
    release.set_value();
    waiter.join();
    EXPECT_TRUE(waited.load());
    const std::vector<std::string> expected{"Package::ContentProvider::ContentProvider",
                                            "Package::ContentProvider::startLoading",
                                            "Package::ContentProvider::loadingFinished(2)",
                                            "Package::ContentProvider::waitForFinishLoading"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(ContentProviderTest, WaitForFinishLoadingReturnsAlsoWithNoPackages) {
    ContentProvider provider(nullptr, directory.path());
    provider.startLoading();
    provider.waitForFinishLoading();
    EXPECT_TRUE(provider.packages().isEmpty());
    const std::vector<std::string> expected{"Package::ContentProvider::loadingFinished(0)",
                                            "Package::ContentProvider::waitForFinishLoading"};
    EXPECT_EQ(entriesStartingWith("Package::ContentProvider::loadingFinished").size(), 1u);
    const auto entries = CallLog::entries();
    EXPECT_EQ(std::vector<std::string>(entries.end() - 2, entries.end()), expected);
}

TEST_F(ContentProviderTest, WaitForFinishLoadingWithoutALoadingReturnsAtOnce) {
    ContentProvider provider(nullptr, directory.path());
    provider.waitForFinishLoading();
    EXPECT_EQ(entriesStartingWith("Package::ContentProvider::waitForFinishLoading").size(), 1u);
}

TEST_F(ContentProviderTest, AFailedLoadingIsRethrownByWaitForFinishLoading) {
    Probe::failNext("Package::ContentProvider::load");
    ContentProvider provider(nullptr, directory.path());
    provider.startLoading();
    EXPECT_THAT(
        [&] { provider.waitForFinishLoading(); },
        FailedWith<std::runtime_error>("Injected failure at Package::ContentProvider::load"));
    EXPECT_TRUE(entriesStartingWith("Package::ContentProvider::waitForFinishLoading").empty());
}

TEST_F(ContentProviderTest, StartingAgainLoadsTheDirectoryAsItIsNow) {
    ContentProvider provider(nullptr, directory.path());
    provider.startLoading();
    provider.waitForFinishLoading();
    writeFile(directory.path(), "late.json", "{}");
    provider.startLoading();
    provider.waitForFinishLoading();
    EXPECT_EQ(provider.packages(), QStringList{"late"});
}

TEST_F(ContentProviderTest, DestroyingItWhileItLoadsWaitsForTheLoader) {
    std::promise<void> release;
    auto released = release.get_future().share();
    std::promise<void> loading;
    Probe::onNext("Package::ContentProvider::load", [&loading, released] {
        loading.set_value();
        released.wait();
    });
    std::thread releaser;
    {
        ContentProvider provider(nullptr, directory.path());
        provider.startLoading();
        ASSERT_EQ(loading.get_future().wait_for(generously), std::future_status::ready);
        releaser = std::thread([&release] { release.set_value(); });
    }
    releaser.join();
    const auto entries = CallLog::entries();
    EXPECT_EQ(entries.back(), "Package::ContentProvider::~ContentProvider");
    EXPECT_EQ(entries[entries.size() - 2], "Package::ContentProvider::loadingFinished(0)");
}

TEST_F(ContentProviderTest, AnsweredMessagesChangeAndReportTheLoadedPackages) {
    ContentProvider provider(nullptr, directory.path());
    provider.receive(Package::InstallFinishedNotification{
        writeFile(directory.path(), "new.json", R"({"name": "New"})")});
    provider.receive(Package::InstallFinishedNotification{
        writeFile(directory.path(), "other.json", R"({"name": "Other"})")});
    provider.receive(Package::InstallFinishedNotification{directory.filePath("missing.json")});
    QStringList reported;
    provider.receive(Package::GetPackagesRequest{
        [&reported](const QStringList& packages) { reported = packages; }});
    EXPECT_EQ(reported, (QStringList{"New", "Other"}));
    provider.receive(Package::PackageRemoveRequest{"New"});
    EXPECT_EQ(provider.packages(), QStringList{"Other"});
}

TEST_F(ContentProviderTest, ALoadPackagesRequestStartsALoading) {
    writeFile(directory.path(), "a.json", "{}");
    ContentProvider provider(nullptr, directory.path());
    provider.receive(Package::LoadPackagesRequest{});
    provider.waitForFinishLoading();
    EXPECT_EQ(provider.packages(), QStringList{"a"});
}

TEST_F(ContentProviderTest, AnInjectedFailureLeavesTheConstructor) {
    Probe::failNext("Package::ContentProvider::ContentProvider");
    EXPECT_THROW(ContentProvider(nullptr, directory.path()), std::runtime_error);
    EXPECT_TRUE(CallLog::entries().empty());
}
