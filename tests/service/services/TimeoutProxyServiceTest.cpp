#include "service/services/TimeoutProxyService.h"

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/services/TimeoutRequest.h"
#include "service/services/TimeoutRequestSerializer.h"
#include "tests/service/services/ControlledService.h"
#include "tests/service/services/ProbeRequest.h"
#include "tests/support/StreamRecorder.h"
#include "tests/support/EventLoop.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <vector>

namespace EditorService {
namespace {

using namespace std::chrono_literals;
using Testing::ControlledService;
using Testing::ProbeRequest;
using Testing::spinFor;
using Testing::spinUntil;
using Testing::StreamRecorder;
using Clock = std::chrono::steady_clock;
using Channel = rxcpp::subjects::subject<nlohmann::json>;

static_assert(!std::is_default_constructible_v<TimeoutProxyService>);
static_assert(std::is_copy_constructible_v<TimeoutProxyService>);
static_assert(std::is_copy_assignable_v<TimeoutProxyService>);
static_assert(std::is_move_constructible_v<TimeoutProxyService>);
static_assert(std::is_move_assignable_v<TimeoutProxyService>);

// Far beyond anything the chains below need; only a broken chain waits this long.
constexpr auto patience = 30s;

std::shared_ptr<ProbeRequest> probe(int level) {
    auto request = std::make_shared<ProbeRequest>();
    request->level = level;
    return request;
}

int levelOf(const std::shared_ptr<Request>& request) {
    return dynamic_cast<const ProbeRequest&>(*request).level.value();
}

std::shared_ptr<Request> limited(std::shared_ptr<Request> wrapped, std::optional<int> timeout) {
    auto request = std::make_shared<TimeoutRequest>();
    request->request = std::move(wrapped);
    request->timeout = timeout;
    return request;
}

nlohmann::json numbered(int n) {
    return {{"n", n}};
}

// The calls of the expiry callback, from whichever thread they come.
class CallbackLog {
public:
    std::function<void(const Request&)> callback() {
        return [calls = this->calls](const Request& request) {
            const std::lock_guard<std::mutex> lock(calls->mutex);
            calls->requests.push_back(&request);
            calls->threads.push_back(std::this_thread::get_id());
            calls->times.push_back(Clock::now());
        };
    }

    int count() const {
        const std::lock_guard<std::mutex> lock(calls->mutex);
        return static_cast<int>(calls->requests.size());
    }

    std::vector<const Request*> requests() const {
        const std::lock_guard<std::mutex> lock(calls->mutex);
        return calls->requests;
    }

    std::vector<std::thread::id> threads() const {
        const std::lock_guard<std::mutex> lock(calls->mutex);
        return calls->threads;
    }

    std::vector<Clock::time_point> times() const {
        const std::lock_guard<std::mutex> lock(calls->mutex);
        return calls->times;
    }

private:
    struct Calls {
        std::mutex mutex;
        std::vector<const Request*> requests;
        std::vector<std::thread::id> threads;
        std::vector<Clock::time_point> times;
    };
    std::shared_ptr<Calls> calls = std::make_shared<Calls>();
};

// Sends values into a channel from a thread of the test's own, once the channel has a
// subscriber: `count` values {"n": 1..count}, one per `interval`, then completion if asked. It
// stops early when the subscriber has gone.
class PacedEmitter {
public:
    PacedEmitter(Channel channel, int count, std::chrono::milliseconds interval, bool complete)
        : thread([channel, count, interval, complete] {
            const auto deadline = Clock::now() + patience;
            while (!channel.has_observers() && Clock::now() < deadline)
                std::this_thread::sleep_for(1ms);
            auto subscriber = channel.get_subscriber();
            for (int n = 1; n <= count; ++n) {
                std::this_thread::sleep_for(interval);
                if (!channel.has_observers())
                    return;
                subscriber.on_next(numbered(n));
            }
            if (complete)
                subscriber.on_completed();
        }) {}

    ~PacedEmitter() { thread.join(); }

private:
    std::thread thread;
};

std::shared_ptr<ControlledService> serviceOn(Channel channel) {
    return std::make_shared<ControlledService>(
        [channel](const std::shared_ptr<Request>&) { return channel.get_observable(); });
}

// A service that answers every request at once, on the subscribing thread: {"level": L} for a
// probe of level L, twice, then completion.
std::shared_ptr<ControlledService> immediateService() {
    return std::make_shared<ControlledService>([](const std::shared_ptr<Request>& request) {
        const int level = levelOf(request);
        return rxcpp::observable<>::create<nlohmann::json>(
                   [level](rxcpp::subscriber<nlohmann::json> subscriber) {
                       subscriber.on_next(nlohmann::json{{"level", level}});
                       subscriber.on_next(nlohmann::json{{"level", level + 1}});
                       subscriber.on_completed();
                   })
            .as_dynamic();
    });
}

void expectTimeoutError(const std::exception_ptr& error) {
    ASSERT_TRUE(error);
    try {
        std::rethrow_exception(error);
    } catch (const rxcpp::timeout_error& timeout) {
        EXPECT_STREQ(timeout.what(), "timeout has occurred");
    } catch (...) {
        ADD_FAILURE() << "the error must be rxcpp::timeout_error";
    }
}

bool waitForSubscriber(const Channel& channel) {
    return spinUntil([&channel] { return channel.has_observers(); }, patience);
}

class TimeoutProxyServiceTest : public testing::Test {
protected:
    const std::thread::id mainThread = std::this_thread::get_id();
    CallbackLog callbacks;
};

// Requests without a limit

TEST_F(TimeoutProxyServiceTest, RequestThatIsNoTimeoutRequestRunsWithoutLimit) {
    const auto service = immediateService();
    TimeoutProxyService proxy(service, callbacks.callback());
    const auto request = probe(1);

    const StreamRecorder recorder(proxy.run(std::shared_ptr<Request>(request)));

    EXPECT_EQ(recorder.values(), (std::vector<nlohmann::json>{{{"level", 1}}, {{"level", 2}}}));
    EXPECT_TRUE(recorder.isCompleted());
    EXPECT_EQ(recorder.endThread(), mainThread);
    ASSERT_EQ(service->received().size(), 1u);
    EXPECT_EQ(service->received().front(), request);
    EXPECT_EQ(callbacks.count(), 0);
}

class TimeoutProxyServiceNoLimitTest : public testing::TestWithParam<std::optional<int>> {};

// Delivery inside subscribe on the subscribing thread, without any event loop, shows that
// neither a timer's thread nor the main thread took part.
TEST_P(TimeoutProxyServiceNoLimitTest, GivesTheWrappedStreamAsItStands) {
    const auto service = immediateService();
    CallbackLog callbacks;
    TimeoutProxyService proxy(service, callbacks.callback());
    const auto wrapped = probe(3);
    const auto stream = proxy.run(limited(wrapped, GetParam()));

    std::vector<nlohmann::json> values;
    std::vector<std::thread::id> valueThreads;
    bool completed = false;
    std::thread::id subscribingThread;
    std::thread subscriber([&] {
        subscribingThread = std::this_thread::get_id();
        stream.subscribe(
            [&](const nlohmann::json& value) {
                values.push_back(value);
                valueThreads.push_back(std::this_thread::get_id());
            },
            [](std::exception_ptr) { ADD_FAILURE() << "no error expected"; },
            [&] { completed = true; });
        // Read before anything else could run: what arrived, arrived inside subscribe.
        EXPECT_EQ(values.size(), 2u);
        EXPECT_TRUE(completed);
    });
    subscriber.join();

    EXPECT_EQ(values, (std::vector<nlohmann::json>{{{"level", 3}}, {{"level", 4}}}));
    EXPECT_EQ(valueThreads, std::vector<std::thread::id>(2, subscribingThread));
    ASSERT_EQ(service->received().size(), 1u);
    EXPECT_EQ(service->received().front(), wrapped);
    EXPECT_EQ(callbacks.count(), 0);
}

INSTANTIATE_TEST_SUITE_P(Limits, TimeoutProxyServiceNoLimitTest,
                         testing::Values(std::nullopt, 0, -1),
                         [](const testing::TestParamInfo<std::optional<int>>& info) {
                             if (!info.param)
                                 return std::string("Empty");
                             return *info.param == 0 ? std::string("Zero")
                                                     : std::string("MinusOne");
                         });

TEST_F(TimeoutProxyServiceTest, WrappedFailureWithoutLimitIsItsOwnError) {
    const auto original = std::make_exception_ptr(Error("wrapped failed"));
    const auto service =
        std::make_shared<ControlledService>([original](const std::shared_ptr<Request>&) {
            return rxcpp::observable<>::error<nlohmann::json>(original).as_dynamic();
        });
    TimeoutProxyService proxy(service, callbacks.callback());

    const StreamRecorder recorder(proxy.run(limited(probe(1), 0)));

    ASSERT_TRUE(recorder.error());
    try {
        std::rethrow_exception(recorder.error());
    } catch (const Error& error) {
        try {
            std::rethrow_exception(original);
        } catch (const Error& expected) {
            EXPECT_EQ(&error, &expected);
        }
    }
    EXPECT_EQ(callbacks.count(), 0);
}

// Limited requests

TEST_F(TimeoutProxyServiceTest, SilentServiceIsCalledBackOnceAfterTheLimit) {
    const Channel channel;
    const auto wrapped = probe(1);
    TimeoutProxyService proxy(serviceOn(channel), callbacks.callback());
    const auto request = limited(wrapped, 1);

    const auto subscribed = Clock::now();
    const StreamRecorder recorder(proxy.run(request));
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    ASSERT_EQ(callbacks.count(), 1);
    EXPECT_GE(callbacks.times().front() - subscribed, 1s);
    EXPECT_NE(callbacks.threads().front(), mainThread);
    EXPECT_EQ(callbacks.requests().front(), wrapped.get());
    EXPECT_NE(callbacks.requests().front(), request.get());
    expectTimeoutError(recorder.error());
    EXPECT_EQ(recorder.endThread(), mainThread);
    EXPECT_TRUE(recorder.values().empty());
    // The wrapped service's subscription ends with the expiry.
    EXPECT_TRUE(spinUntil([&] { return !channel.has_observers(); }, patience));
    spinFor(200ms);
    EXPECT_EQ(callbacks.count(), 1);
    EXPECT_EQ(recorder.ends(), 1);
}

TEST_F(TimeoutProxyServiceTest, ServiceEmittingMoreOftenThanTheLimitCompletesWithoutCallback) {
    const Channel channel;
    TimeoutProxyService proxy(serviceOn(channel), callbacks.callback());
    const StreamRecorder recorder(proxy.run(limited(probe(1), 1)));

    {
        // Eight values a quarter second apart: twice the limit in all, never silent for long.
        const PacedEmitter emitter(channel, 8, 250ms, true);
        ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));
    }

    EXPECT_TRUE(recorder.isCompleted());
    EXPECT_FALSE(recorder.error());
    std::vector<nlohmann::json> expected;
    for (int n = 1; n <= 8; ++n)
        expected.push_back(numbered(n));
    EXPECT_EQ(recorder.values(), expected);
    EXPECT_EQ(recorder.valueThreads(), std::vector<std::thread::id>(8, mainThread));
    EXPECT_EQ(recorder.endThread(), mainThread);
    EXPECT_EQ(callbacks.count(), 0);
}

TEST_F(TimeoutProxyServiceTest, ServiceCompletingWithoutValueInsideTheLimitCompletes) {
    const Channel channel;
    TimeoutProxyService proxy(serviceOn(channel), callbacks.callback());
    const StreamRecorder recorder(proxy.run(limited(probe(1), 1)));
    ASSERT_TRUE(waitForSubscriber(channel));

    channel.get_subscriber().on_completed();
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    EXPECT_TRUE(recorder.isCompleted());
    EXPECT_TRUE(recorder.values().empty());
    EXPECT_EQ(recorder.endThread(), mainThread);
    // The timer ended with the completion: nothing follows once the limit has passed.
    spinFor(1500ms);
    EXPECT_EQ(callbacks.count(), 0);
    EXPECT_EQ(recorder.ends(), 1);
}

TEST_F(TimeoutProxyServiceTest, ValuesBeforeTheExpiryArriveAheadOfTheErrorInOrder) {
    const Channel channel;
    TimeoutProxyService proxy(serviceOn(channel), callbacks.callback());
    const StreamRecorder recorder(proxy.run(limited(probe(1), 1)));
    ASSERT_TRUE(waitForSubscriber(channel));

    for (int n = 1; n <= 3; ++n)
        channel.get_subscriber().on_next(numbered(n));
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    EXPECT_EQ(recorder.values(),
              (std::vector<nlohmann::json>{numbered(1), numbered(2), numbered(3)}));
    EXPECT_EQ(recorder.valuesAtEnd(), 3);
    EXPECT_EQ(recorder.valueThreads(), std::vector<std::thread::id>(3, mainThread));
    expectTimeoutError(recorder.error());
    EXPECT_EQ(callbacks.count(), 1);
}

TEST_F(TimeoutProxyServiceTest, TwoRequestsInOneRunHaveTimersOfTheirOwn) {
    const Channel silent;
    const Channel busy;
    const auto service = std::make_shared<ControlledService>(
        [silent, busy](const std::shared_ptr<Request>& request) {
            return levelOf(request) == 1 ? silent.get_observable() : busy.get_observable();
        });
    TimeoutProxyService proxy(service, callbacks.callback());
    const auto silentRequest = probe(1);
    const auto busyRequest = probe(2);
    const auto requests = rxcpp::observable<>::create<std::shared_ptr<Request>>(
        [first = limited(silentRequest, 1),
         second = limited(busyRequest, 1)](rxcpp::subscriber<std::shared_ptr<Request>> subscriber) {
            subscriber.on_next(first);
            subscriber.on_next(second);
            subscriber.on_completed();
        });

    {
        const StreamRecorder recorder(proxy.run(requests.as_dynamic()));
        // The busy request's values keep its own timer armed, not the silent one's.
        const PacedEmitter emitter(busy, 12, 250ms, false);
        ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));
        expectTimeoutError(recorder.error());
        EXPECT_EQ(recorder.endThread(), mainThread);
    }

    ASSERT_EQ(callbacks.count(), 1);
    EXPECT_EQ(callbacks.requests().front(), silentRequest.get());
    ASSERT_EQ(service->received().size(), 2u);
    EXPECT_EQ(service->received()[0], silentRequest);
    EXPECT_EQ(service->received()[1], busyRequest);
}

TEST_F(TimeoutProxyServiceTest, EmptyCallbackFailsTheStreamWithBadFunctionCall) {
    const Channel channel;
    TimeoutProxyService proxy(serviceOn(channel), nullptr);

    const StreamRecorder recorder(proxy.run(limited(probe(1), 1)));
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    ASSERT_TRUE(recorder.error());
    try {
        std::rethrow_exception(recorder.error());
    } catch (const std::bad_function_call& error) {
        EXPECT_STREQ(error.what(), std::bad_function_call().what());
    } catch (...) {
        ADD_FAILURE() << "the error must be std::bad_function_call";
    }
    EXPECT_EQ(recorder.endThread(), mainThread);
}

TEST_F(TimeoutProxyServiceTest, ThrowingCallbackFailsTheStreamWithWhatItThrew) {
    const Channel channel;
    std::atomic<int> calls{0};
    TimeoutProxyService proxy(serviceOn(channel), [&calls](const Request&) {
        ++calls;
        throw Error("stopped by the host");
    });

    const StreamRecorder recorder(proxy.run(limited(probe(1), 1)));
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    ASSERT_TRUE(recorder.error());
    try {
        std::rethrow_exception(recorder.error());
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "stopped by the host");
    } catch (...) {
        ADD_FAILURE() << "the error must be what the callback threw";
    }
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(recorder.endThread(), mainThread);
}

TEST_F(TimeoutProxyServiceTest, WrappedFailureUnderLimitIsPassedOnUnchangedWithoutCallback) {
    const Channel channel;
    TimeoutProxyService proxy(serviceOn(channel), callbacks.callback());
    const StreamRecorder recorder(proxy.run(limited(probe(1), 30)));
    ASSERT_TRUE(waitForSubscriber(channel));
    const auto original = std::make_exception_ptr(Error("wrapped failed"));

    channel.get_subscriber().on_error(original);
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    ASSERT_TRUE(recorder.error());
    try {
        std::rethrow_exception(recorder.error());
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "wrapped failed");
        try {
            std::rethrow_exception(original);
        } catch (const Error& expected) {
            EXPECT_EQ(&error, &expected);
        }
    } catch (...) {
        ADD_FAILURE() << "the error must be the wrapped service's";
    }
    EXPECT_EQ(recorder.endThread(), mainThread);
    EXPECT_EQ(callbacks.count(), 0);
}

TEST_F(TimeoutProxyServiceTest, DestroyingTheProxyAfterRunDoesNotDisturbARunningChain) {
    const Channel channel;
    auto service = serviceOn(channel);
    const std::weak_ptr<ControlledService> serviceAlive = service;
    auto proxy = std::make_unique<TimeoutProxyService>(service, callbacks.callback());
    const auto stream = proxy->run(limited(probe(1), 30));
    const StreamRecorder recorder(stream);
    ASSERT_TRUE(waitForSubscriber(channel));

    proxy.reset();
    service.reset();
    EXPECT_FALSE(serviceAlive.expired());
    channel.get_subscriber().on_next(numbered(1));
    channel.get_subscriber().on_next(numbered(2));
    channel.get_subscriber().on_completed();
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    EXPECT_EQ(recorder.values(), (std::vector<nlohmann::json>{numbered(1), numbered(2)}));
    EXPECT_TRUE(recorder.isCompleted());
    EXPECT_EQ(callbacks.count(), 0);
}

TEST_F(TimeoutProxyServiceTest, StreamOfADestroyedProxyRunsWhenSubscribedLater) {
    auto service = immediateService();
    auto proxy = std::make_unique<TimeoutProxyService>(service, callbacks.callback());
    const auto stream = proxy->run(limited(probe(5), 30));
    proxy.reset();
    service.reset();

    const StreamRecorder recorder(stream);
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    EXPECT_EQ(recorder.values(), (std::vector<nlohmann::json>{{{"level", 5}}, {{"level", 6}}}));
    EXPECT_TRUE(recorder.isCompleted());
}

// Options and serializer

TEST_F(TimeoutProxyServiceTest, OptionsHoldTheTimeoutOptionAlone) {
    const QList<QCommandLineOption> options = TimeoutProxyService::options();
    const QCommandLineOption expected = TimeoutRequest::timeoutOption();

    ASSERT_EQ(options.size(), 1);
    EXPECT_EQ(options.constFirst().names(), expected.names());
    EXPECT_EQ(options.constFirst().description(), expected.description());
    EXPECT_EQ(options.constFirst().valueName(), expected.valueName());
    EXPECT_EQ(options.constFirst().defaultValues(), expected.defaultValues());
    EXPECT_EQ(options.constFirst().flags(), expected.flags());
}

TEST_F(TimeoutProxyServiceTest, RequestSerializerWrapsTheWrappedServicesSerializer) {
    const TimeoutProxyService proxy(immediateService(), callbacks.callback());

    const auto serializer = proxy.requestSerializer();
    const auto loaded = serializer->loadFromCli({"--level=3", "--timeout=2"});

    ASSERT_NE(dynamic_cast<TimeoutRequestSerializer*>(serializer.get()), nullptr);
    const auto& request = dynamic_cast<const TimeoutRequest&>(*loaded);
    EXPECT_EQ(request.timeout, 2);
    EXPECT_EQ(dynamic_cast<const ProbeRequest&>(*request.request).level, 3);
}

TEST_F(TimeoutProxyServiceTest, RequestSerializerOutlivesTheService) {
    auto service = immediateService();
    const std::weak_ptr<ControlledService> serviceAlive = service;
    auto proxy = std::make_unique<TimeoutProxyService>(service, callbacks.callback());
    const auto serializer = proxy->requestSerializer();

    proxy.reset();
    service.reset();
    ASSERT_TRUE(serviceAlive.expired());

    const auto loaded = serializer->loadFromJson({{"level", 4}, {"timeout", 9}});
    EXPECT_EQ(serializer->toJson(*loaded), (nlohmann::json{{"level", 4}, {"timeout", 9}}));
}

TEST_F(TimeoutProxyServiceTest, CommandLineRunLoadsTheLimitAroundTheWrappedRequest) {
    const auto service = immediateService();
    TimeoutProxyService proxy(service, callbacks.callback());

    const StreamRecorder recorder(
        proxy.run(QStringList{"app-path-stub", "--level=4", "--timeout=0"}));

    EXPECT_EQ(recorder.values(), (std::vector<nlohmann::json>{{{"level", 4}}, {{"level", 5}}}));
    EXPECT_TRUE(recorder.isCompleted());
    ASSERT_EQ(service->received().size(), 1u);
    EXPECT_EQ(levelOf(service->received().front()), 4);
}

TEST_F(TimeoutProxyServiceTest, CommandLineHelpIsTheWrappedServicesHelp) {
    TimeoutProxyService proxy(immediateService(), callbacks.callback());

    const StreamRecorder recorder(proxy.run(QStringList{"app-path-stub", "--help"}));

    ASSERT_TRUE(recorder.error());
    try {
        std::rethrow_exception(recorder.error());
    } catch (const CLI::HelpException& help) {
        const std::string text = help.what();
        EXPECT_NE(text.find("--level, -l <n>"), std::string::npos);
        EXPECT_EQ(text.find("--timeout"), std::string::npos);
    } catch (...) {
        ADD_FAILURE() << "the error must be CLI::HelpException";
    }
}

TEST_F(TimeoutProxyServiceTest, CopySharesTheWrappedService) {
    const auto service = immediateService();
    const TimeoutProxyService original(service, callbacks.callback());
    TimeoutProxyService copy(original);
    const auto wrapped = probe(1);

    const StreamRecorder recorder(copy.run(limited(wrapped, 0)));

    EXPECT_TRUE(recorder.isCompleted());
    ASSERT_EQ(service->received().size(), 1u);
    EXPECT_EQ(service->received().front(), wrapped);
}

} // namespace
} // namespace EditorService
