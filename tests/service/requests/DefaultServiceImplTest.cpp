#include "service/requests/DefaultServiceImpl.h"

#include "tests/service/requests/SampleRequest.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <typeinfo>
#include <vector>

using EditorService::DefaultServiceImpl;
using EditorService::Request;
using EditorService::Testing::FailedWith;
using EditorService::Testing::LimitRequest;
using EditorService::Testing::SampleRequest;

namespace {

// What the typed run saw, kept apart from the service so that the stream can outlive it.
struct Seen {
    std::vector<SampleRequest> requests;
};

class SampleService : public DefaultServiceImpl<SampleRequest> {
public:
    explicit SampleService(std::shared_ptr<Seen> seen)
        : seen(std::move(seen)) {}

    using DefaultServiceImpl<SampleRequest>::run;

    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<SampleRequest>& requests) override {
        auto seen = this->seen;
        return requests
            .map([seen](const SampleRequest& request) {
                seen->requests.push_back(request);
                return nlohmann::json(request.limit.value_or(-1));
            })
            .as_dynamic();
    }

private:
    std::shared_ptr<Seen> seen;
};

struct Outcome {
    std::vector<nlohmann::json> values;
    std::exception_ptr error;
    int completions = 0;
};

Outcome drain(const rxcpp::observable<nlohmann::json>& stream) {
    Outcome outcome;
    stream.subscribe([&](const nlohmann::json& value) { outcome.values.push_back(value); },
                     [&](std::exception_ptr error) { outcome.error = error; },
                     [&] { ++outcome.completions; });
    return outcome;
}

std::shared_ptr<Request> sampleWithLimit(int limit) {
    auto request = std::make_shared<SampleRequest>();
    request->limit = limit;
    return request;
}

TEST(DefaultServiceImplTest, EachCallGivesADistinctSerializerOfTheRequestsClass) {
    const SampleService service(std::make_shared<Seen>());

    const auto first = service.requestSerializer();
    const auto second = service.requestSerializer();

    EXPECT_NE(first.get(), second.get());
    EXPECT_NE(dynamic_cast<SampleRequest::Serializer*>(first.get()), nullptr);
}

TEST(DefaultServiceImplTest, TypedRunReceivesEachRequestAsItsClass) {
    auto seen = std::make_shared<Seen>();
    SampleService service(seen);
    const rxcpp::observable<std::shared_ptr<Request>> requests =
        rxcpp::observable<>::create<std::shared_ptr<Request>>(
            [](rxcpp::subscriber<std::shared_ptr<Request>> subscriber) {
                subscriber.on_next(sampleWithLimit(1));
                subscriber.on_next(sampleWithLimit(2));
                subscriber.on_completed();
            })
            .as_dynamic();

    const Outcome outcome = drain(service.run(requests));

    EXPECT_EQ(outcome.values, (std::vector<nlohmann::json>{1, 2}));
    EXPECT_EQ(outcome.completions, 1);
    EXPECT_FALSE(outcome.error);
    ASSERT_EQ(seen->requests.size(), 2u);
}

TEST(DefaultServiceImplTest, RequestOfAnotherClassEndsTheStreamWithBadCast) {
    auto seen = std::make_shared<Seen>();
    SampleService service(seen);
    rxcpp::observable<std::shared_ptr<Request>> requests =
        rxcpp::observable<>::create<std::shared_ptr<Request>>(
            [](rxcpp::subscriber<std::shared_ptr<Request>> subscriber) {
                subscriber.on_next(sampleWithLimit(1));
                subscriber.on_next(std::make_shared<LimitRequest>());
                subscriber.on_next(sampleWithLimit(3));
                subscriber.on_completed();
            })
            .as_dynamic();

    Outcome outcome;
    EXPECT_NO_THROW(outcome = drain(service.run(requests)));

    EXPECT_EQ(outcome.values, (std::vector<nlohmann::json>{1}));
    EXPECT_EQ(outcome.completions, 0);
    EXPECT_THAT(outcome.error, FailedWith<std::bad_cast>("std::bad_cast"));
    EXPECT_EQ(seen->requests.size(), 1u);
}

TEST(DefaultServiceImplTest, ServiceHoldsACopySoLaterChangesDoNotReachIt) {
    auto seen = std::make_shared<Seen>();
    SampleService service(seen);
    auto shared = std::make_shared<SampleRequest>();
    shared->limit = 1;
    shared->label = QStringLiteral("before");

    drain(service.run(std::shared_ptr<Request>(shared)));
    shared->limit = 2;
    shared->label = QStringLiteral("after");

    ASSERT_EQ(seen->requests.size(), 1u);
    EXPECT_EQ(seen->requests.front().limit, 1);
    EXPECT_EQ(seen->requests.front().label, QStringLiteral("before"));
}

TEST(DefaultServiceImplTest, StreamRunsToItsEndAfterTheServiceIsGone) {
    auto seen = std::make_shared<Seen>();
    auto service = std::make_shared<SampleService>(seen);
    const auto stream = service->run(sampleWithLimit(5));
    service.reset();

    const Outcome outcome = drain(stream);

    EXPECT_EQ(outcome.values, (std::vector<nlohmann::json>{5}));
    EXPECT_EQ(outcome.completions, 1);
}

TEST(DefaultServiceImplTest, CommandLineRunLoadsThroughTheRequestSerializer) {
    auto seen = std::make_shared<Seen>();
    SampleService service(seen);

    const Outcome outcome = drain(service.run(QStringList{"--limit=4", "--label=x"}));

    EXPECT_EQ(outcome.values, (std::vector<nlohmann::json>{4}));
    ASSERT_EQ(seen->requests.size(), 1u);
    EXPECT_EQ(seen->requests.front().label, QStringLiteral("x"));
}

} // namespace
