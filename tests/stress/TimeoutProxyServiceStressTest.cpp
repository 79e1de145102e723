#include "service/services/TimeoutProxyService.h"

#include "service/services/ScriptRequest.h"
#include "service/services/ScriptService.h"
#include "tests/stress/StressFixture.h"
#include "tests/support/FailedWith.h"

#include <QCoreApplication>
#include <QThread>
#include <gmock/gmock.h>
#include <memory>
#include <set>
#include <stdexcept>

using namespace EditorService;
using namespace EditorService::Testing;

namespace {

// What the expiry callback saw: the number of each wrapped request it was called with.
struct Expiries {
    std::mutex mutex;
    std::multiset<int> numbers;
    std::atomic<int> offMainThread{0};

    std::function<void(const Request&)> counter() {
        return [this](const Request& request) {
            if (QThread::currentThread() != QCoreApplication::instance()->thread())
                ++offMainThread;
            std::lock_guard<std::mutex> lock(mutex);
            numbers.insert(numberOf(dynamic_cast<const StressRequest&>(request)));
        };
    }
};

class TimeoutProxyServiceStressTest : public StressFixture {
protected:
    std::shared_ptr<AbstractService> limited(StressMode mode,
                                             std::function<void(const Request&)> callback) {
        return std::make_shared<TimeoutProxyService>(std::make_shared<StressService>(mode, probe),
                                                     std::move(callback));
    }

    static bool allEnded(const std::vector<std::shared_ptr<Outcome>>& outcomes) {
        for (const auto& outcome : outcomes) {
            if (!outcome->ended())
                return false;
        }
        return true;
    }
};

// A thousand commands, each with a limit of its own, all at once; every tenth stays silent, and
// for every other silent one the callback throws, which fails that stream alone with what it
// threw. The limit is a whole second at least, so this is the one real wait of the file.
TEST_F(TimeoutProxyServiceStressTest, ThousandLimitedCommandsEndOnceAndOnlyTheSilentOnesExpire) {
    const int commands = 1000;
    Expiries expiries;
    const auto counting = expiries.counter();
    const auto values = limited(StressMode::Value, counting);
    const auto silent = limited(StressMode::Silent, counting);
    const auto silentThrowing = limited(StressMode::Silent, [counting](const Request& request) {
        counting(request);
        throw std::runtime_error("callback failed");
    });
    const auto serviceFor = [&](int command) {
        if (command % 10 != 0)
            return values;
        return command % 20 == 0 ? silentThrowing : silent;
    };
    std::vector<std::shared_ptr<Outcome>> outcomes;
    for (int command = 0; command < commands; ++command) {
        const QStringList arguments{applicationPath(), QString::number(command),
                                    QStringLiteral("--timeout=1")};
        outcomes.push_back(observe(serviceFor(command)->run(arguments)));
    }
    ASSERT_TRUE(spinUntil([&outcomes] { return allEnded(outcomes); }));
    // A second end, if any, would come right behind the first.
    spinFor(std::chrono::milliseconds(50));

    std::multiset<int> expected;
    for (int command = 0; command < commands; ++command) {
        const auto& outcome = *outcomes[std::size_t(command)];
        EXPECT_EQ(outcome.ends.load(), 1) << command;
        if (command % 10 != 0) {
            EXPECT_FALSE(outcome.error) << command << ": " << failureText(outcome.error);
            EXPECT_EQ(outcome.values,
                      std::vector<nlohmann::json>{(nlohmann::json{{"value", command}})});
            continue;
        }
        expected.insert(command);
        EXPECT_TRUE(outcome.values.empty()) << command;
        if (command % 20 == 0) {
            EXPECT_THAT(outcome.error, FailedWith<std::runtime_error>("callback failed"))
                << command;
            continue;
        }
        EXPECT_THAT(outcome.error, FailedWith<rxcpp::timeout_error>("timeout has occurred"))
            << command;
    }
    std::lock_guard<std::mutex> lock(expiries.mutex);
    EXPECT_EQ(expiries.numbers, expected);
    EXPECT_EQ(expiries.offMainThread.load(), commands / 10);
}

// Limited commands in a script: each hops to the main thread through a worker of its own.
TEST_F(TimeoutProxyServiceStressTest, ScriptOfLimitedCommandsDeliversEveryValueOnce) {
    Expiries expiries;
    const auto probe = this->probe;
    loader->registerService(QStringLiteral("limited-value"), QString(),
                            [probe, &expiries](std::weak_ptr<const ServiceLoader>) {
                                return std::make_shared<TimeoutProxyService>(
                                    std::make_shared<StressService>(StressMode::Value, probe),
                                    expiries.counter());
                            });
    const int commands = 1000;
    QByteArray content;
    for (int command = 0; command < commands; ++command)
        content += "limited-value; " + QByteArray::number(command) + "; --timeout=30\n";
    const QString script = writeScript(content);
    for (const int jobs : {0, 1, 8}) {
        ScriptService service(loader);
        const auto outcome =
            observeToEnd(service.run(std::make_shared<ScriptRequest>(script, jobs)));
        ASSERT_FALSE(outcome->error) << failureText(outcome->error);
        std::set<int> numbers;
        for (const auto& value : outcome->values)
            numbers.insert(value.at("value").get<int>());
        EXPECT_EQ(int(outcome->values.size()), commands) << jobs;
        EXPECT_EQ(int(numbers.size()), commands) << jobs;
    }
    std::lock_guard<std::mutex> lock(expiries.mutex);
    EXPECT_TRUE(expiries.numbers.empty());
}

} // namespace
