#include "service/services/TimeoutProxyService.h"

#include "service/services/ScriptRequest.h"
#include "service/services/ScriptService.h"
#include "tests/stress/StressFixture.h"

#include <QCoreApplication>
#include <QThread>
#include <memory>
#include <set>

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

// A thousand commands, each with a limit of its own, all at once; every tenth stays silent.
TEST_F(TimeoutProxyServiceStressTest, ThousandLimitedCommandsEndOnceAndOnlyTheSilentOnesExpire) {
    const int commands = 1000;
    Expiries expiries;
    const auto values = limited(StressMode::Value, expiries.counter());
    const auto silent = limited(StressMode::Silent, expiries.counter());
    std::vector<std::shared_ptr<Outcome>> outcomes;
    for (int command = 0; command < commands; ++command) {
        const QStringList arguments{applicationPath(), QString::number(command),
                                    QStringLiteral("--timeout=1")};
        outcomes.push_back(observe((command % 10 == 0 ? silent : values)->run(arguments)));
    }
    ASSERT_TRUE(spinUntil([&outcomes] { return allEnded(outcomes); }));
    spinFor(std::chrono::milliseconds(50));

    std::multiset<int> expected;
    for (int command = 0; command < commands; ++command) {
        const auto& outcome = *outcomes[std::size_t(command)];
        EXPECT_EQ(outcome.ends.load(), 1) << command;
        if (command % 10 != 0) {
            EXPECT_FALSE(outcome.error) << command << ": " << errorText(outcome.error);
            EXPECT_EQ(outcome.values,
                      std::vector<nlohmann::json>{(nlohmann::json{{"value", command}})});
            continue;
        }
        expected.insert(command);
        EXPECT_TRUE(outcome.values.empty()) << command;
        try {
            std::rethrow_exception(outcome.error);
        } catch (const rxcpp::timeout_error& error) {
            EXPECT_STREQ(error.what(), "timeout has occurred");
        } catch (...) {
            ADD_FAILURE() << command << ": " << errorText(outcome.error);
        }
    }
    std::lock_guard<std::mutex> lock(expiries.mutex);
    EXPECT_EQ(expiries.numbers, expected);
    EXPECT_EQ(expiries.offMainThread.load(), commands / 10);
}

TEST_F(TimeoutProxyServiceStressTest, ThrowingCallbackFailsEachStreamWithWhatItThrew) {
    auto calls = std::make_shared<std::atomic<int>>(0);
    const auto silent = limited(StressMode::Silent, [calls](const Request&) {
        ++*calls;
        throw std::runtime_error("callback failed");
    });
    std::vector<std::shared_ptr<Outcome>> outcomes;
    for (int command = 0; command < 50; ++command)
        outcomes.push_back(observe(silent->run(
            QStringList{applicationPath(), QStringLiteral("-t"), QStringLiteral("1")})));
    ASSERT_TRUE(spinUntil([&outcomes] { return allEnded(outcomes); }));
    EXPECT_EQ(calls->load(), 50);
    for (const auto& outcome : outcomes) {
        EXPECT_EQ(outcome->ends.load(), 1);
        try {
            std::rethrow_exception(outcome->error);
        } catch (const rxcpp::timeout_error&) {
            ADD_FAILURE() << "the timeout error, not the callback's";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "callback failed");
        }
    }
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
        ASSERT_FALSE(outcome->error) << errorText(outcome->error);
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
