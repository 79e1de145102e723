#include "service/services/TimeoutProxyService.h"

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/services/TimeoutRequest.h"
#include "service/services/TimeoutRequestSerializer.h"
#include "tests/service/services/ControlledService.h"
#include "tests/service/services/ProbeRequest.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"
#include "tests/support/StreamRecorder.h"

#include <chrono>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace EditorService {
namespace {

using namespace std::chrono_literals;
using Testing::ControlledService;
using Testing::FailedWith;
using Testing::failureOf;
using Testing::failureText;
using Testing::ProbeRequest;
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

std::shared_ptr<ControlledService> serviceOn(Channel channel) {
    return std::make_shared<ControlledService>(
        [channel](const std::shared_ptr<Request>&) { return channel.get_observable(); });
}

// Answers a probe of level L at once, on the subscribing thread: {"level": L}, {"level": L+1},
// then completion.
rxcpp::observable<nlohmann::json> answerAtOnce(const std::shared_ptr<Request>& request) {
    const int level = levelOf(request);
    return rxcpp::observable<>::create<nlohmann::json>(
               [level](rxcpp::subscriber<nlohmann::json> subscriber) {
                   subscriber.on_next(nlohmann::json{{"level", level}});
                   subscriber.on_next(nlohmann::json{{"level", level + 1}});
                   subscriber.on_completed();
               })
        .as_dynamic();
}

std::shared_ptr<ControlledService> immediateService() {
    return std::make_shared<ControlledService>(answerAtOnce);
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

    EXPECT_THAT(recorder.error(), FailedWith<Error>("wrapped failed"));
    EXPECT_EQ(recorder.error(), original);
    EXPECT_EQ(callbacks.count(), 0);
}

// Limited requests: what the limit itself does is pinned in virtual time (LimitOnSilenceTest);
// these check how the proxy wires it, with real threads.

TEST_F(TimeoutProxyServiceTest, LimitedRequestDeliversOnTheMainThread) {
    const Channel channel;
    TimeoutProxyService proxy(serviceOn(channel), callbacks.callback());
    const StreamRecorder recorder(proxy.run(limited(probe(1), 30)));
    ASSERT_TRUE(waitForSubscriber(channel));

    std::thread emitter([subscriber = channel.get_subscriber()] {
        for (int n = 1; n <= 3; ++n)
            subscriber.on_next(numbered(n));
        subscriber.on_completed();
    });
    const bool ended = spinUntil([&] { return recorder.hasEnded(); }, patience);
    emitter.join();
    ASSERT_TRUE(ended);

    EXPECT_EQ(recorder.values(),
              (std::vector<nlohmann::json>{numbered(1), numbered(2), numbered(3)}));
    EXPECT_EQ(recorder.valueThreads(), std::vector<std::thread::id>(3, mainThread));
    EXPECT_TRUE(recorder.isCompleted());
    EXPECT_EQ(recorder.endThread(), mainThread);
    EXPECT_EQ(callbacks.count(), 0);
}

// Two limited requests in one run: the silent one's limit runs out, the other completes at once.
// Only the silent one's wrapped request reaches the callback, from the timer's thread.
TEST_F(TimeoutProxyServiceTest, SilentRequestIsCalledBackOnceWithItsOwnWrappedRequest) {
    const Channel silent;
    const auto service =
        std::make_shared<ControlledService>([silent](const std::shared_ptr<Request>& request) {
            return levelOf(request) == 1 ? silent.get_observable() : answerAtOnce(request);
        });
    TimeoutProxyService proxy(service, callbacks.callback());
    const auto silentWrapped = probe(1);
    const auto answeringWrapped = probe(5);
    const auto silentRequest = limited(silentWrapped, 1);
    const auto requests = rxcpp::observable<>::create<std::shared_ptr<Request>>(
        [silentRequest, answering = limited(answeringWrapped, 1)](
            rxcpp::subscriber<std::shared_ptr<Request>> subscriber) {
            subscriber.on_next(silentRequest);
            subscriber.on_next(answering);
            subscriber.on_completed();
        });

    const auto subscribed = Clock::now();
    const StreamRecorder recorder(proxy.run(requests.as_dynamic()));
    ASSERT_TRUE(spinUntil([&] { return recorder.hasEnded(); }, patience));

    ASSERT_EQ(callbacks.count(), 1);
    EXPECT_EQ(callbacks.requests().front(), silentWrapped.get());
    EXPECT_NE(callbacks.requests().front(), silentRequest.get());
    EXPECT_NE(callbacks.threads().front(), mainThread);
    EXPECT_GE(callbacks.times().front() - subscribed, 1s);
    EXPECT_THAT(recorder.error(), FailedWith<rxcpp::timeout_error>("timeout has occurred"));
    EXPECT_EQ(recorder.endThread(), mainThread);
    EXPECT_EQ(recorder.values(), (std::vector<nlohmann::json>{{{"level", 5}}, {{"level", 6}}}));
    // The wrapped service sees the wrapped requests only, and lets go of the silent one.
    EXPECT_EQ(service->received(),
              (std::vector<std::shared_ptr<Request>>{silentWrapped, answeringWrapped}));
    EXPECT_TRUE(spinUntil([&] { return !silent.has_observers(); }, patience));
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
    const std::string wrappedHelp = failureText(failureOf([] {
        ProbeRequest::Serializer().loadFromCli(QStringList{"app-path-stub", "--help"});
    }));
    ASSERT_NE(wrappedHelp.find("--level, -l <n>"), std::string::npos);
    ASSERT_EQ(wrappedHelp.find("--timeout"), std::string::npos);

    const StreamRecorder recorder(proxy.run(QStringList{"app-path-stub", "--help"}));

    EXPECT_THAT(recorder.error(), FailedWith<CLI::HelpException>(wrappedHelp));
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
