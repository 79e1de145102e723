#include "service/api/ServiceLoader.h"

#include "tests/stress/StressFixture.h"
#include "tests/support/FailedWith.h"

#include <thread>

using namespace EditorService;
using namespace EditorService::Testing;

namespace {

class ServiceLoaderStressTest : public StressFixture {};

TEST_F(ServiceLoaderStressTest, ManyThreadsCreateAndRunServicesAtOnce) {
    const int threads = 8;
    const int rounds = 2000;
    const std::string unknown = QStringLiteral("Unknown service \"nosuch\", known services: %1")
                                    .arg(loader->serviceNames().join(QStringLiteral(", ")))
                                    .toStdString();
    std::atomic<int> ready{0};
    std::atomic<int> failures{0};
    std::vector<std::thread> workers;
    for (int thread = 0; thread < threads; ++thread) {
        workers.emplace_back([&, thread] {
            ++ready;
            while (ready.load() < threads)
                std::this_thread::yield();
            for (int round = 0; round < rounds; ++round) {
                const int number = thread * rounds + round;
                const auto service = loader->createService(QStringLiteral("value"));
                int seen = -1;
                service->run(QStringList{QStringLiteral("app"), QString::number(number)})
                    .subscribe([&seen](const nlohmann::json& value) { seen = value.at("value"); },
                               [&failures](std::exception_ptr) { ++failures; });
                if (seen != number)
                    ++failures;
                if (!testing::Matches(FailedWith<Error>(unknown))(
                        failureOf([&] { loader->createService(QStringLiteral("nosuch")); })))
                    ++failures;
            }
        });
    }
    for (auto& worker : workers)
        worker.join();
    EXPECT_EQ(failures.load(), 0);
    EXPECT_EQ(probe->created.load(), threads * rounds);
}

} // namespace
