#include "service/api/ServiceLoader.h"

#include "service/api/Error.h"
#include "tests/service/api/CountingService.h"
#include "tests/support/FailedWith.h"

#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using EditorService::Testing::FailedWith;
using namespace EditorService;

namespace {

std::shared_ptr<ServiceLoader> makeLoader() {
    auto loader = std::make_shared<ServiceLoader>();
    const auto counting = [](std::weak_ptr<const ServiceLoader>) {
        return std::make_shared<EditorService::Testing::CountingService>();
    };
    loader->registerService(QStringLiteral("count"), QStringLiteral("Counts"), counting);
    loader->registerService(QStringLiteral("alpha"), QStringLiteral("First"), counting);
    return loader;
}

TEST(ServiceLoaderTest, CreatesANewServiceForEveryCall) {
    const auto loader = makeLoader();
    const auto first = loader->createService(QStringLiteral("count"));
    const auto second = loader->createService(QStringLiteral("count"));
    ASSERT_TRUE(first);
    EXPECT_NE(first, second);
}

TEST(ServiceLoaderTest, UnknownNameThrowsErrorNamingItAndTheKnownOnes) {
    const auto loader = makeLoader();
    EXPECT_THAT([&] { loader->createService(QStringLiteral("nosuch")); },
                FailedWith<Error>("Unknown service \"nosuch\", known services: alpha, count"));
}

TEST(ServiceLoaderTest, UnknownNameIsQuotedWithControlCharactersQuotesAndBackslashesEscaped) {
    const auto loader = makeLoader();
    const QString name = QStringLiteral("a\tb\nc\"d\\e") + QChar(0) + QChar(0x7f) + QChar(0xe9);
    EXPECT_THAT(
        [&] { loader->createService(name); },
        FailedWith<Error>(
            "Unknown service \"a\\x09b\\x0ac\\\"d\\\\e\\x00\\x7f\xc3\xa9\", known services: "
            "alpha, count"));
}

TEST(ServiceLoaderTest, PlaceholdersInAnUnknownNameAreQuotedAsTheyCame) {
    const auto loader = makeLoader();
    EXPECT_THAT([&] { loader->createService(QStringLiteral("%2%1")); },
                FailedWith<Error>("Unknown service \"%2%1\", known services: alpha, count"));
}

TEST(ServiceLoaderTest, FactoryReceivesTheLoadersOwnWeakPointer) {
    auto loader = std::make_shared<ServiceLoader>();
    std::weak_ptr<const ServiceLoader> received;
    loader->registerService(QStringLiteral("x"), {}, [&](std::weak_ptr<const ServiceLoader> self) {
        received = self;
        return std::make_shared<EditorService::Testing::CountingService>();
    });
    loader->createService(QStringLiteral("x"));
    EXPECT_EQ(received.lock(), loader);
}

TEST(ServiceLoaderTest, ListsNamesSortedWithTheirSummaries) {
    const auto loader = makeLoader();
    EXPECT_EQ(loader->serviceNames(), (QStringList{"alpha", "count"}));
    EXPECT_EQ(loader->summary(QStringLiteral("count")), QStringLiteral("Counts"));
    EXPECT_TRUE(loader->summary(QStringLiteral("nosuch")).isEmpty());
}

TEST(ServiceLoaderTest, CreatesServicesFromManyThreadsAtOnce) {
    const auto loader = makeLoader();
    std::atomic<int> created{0};
    std::atomic<int> refused{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 500; ++round) {
                if (loader->createService(QStringLiteral("count")))
                    ++created;
                try {
                    loader->createService(QStringLiteral("nosuch"));
                } catch (const Error&) {
                    ++refused;
                }
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(created, 4000);
    EXPECT_EQ(refused, 4000);
}

} // namespace
