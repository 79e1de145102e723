#include "service/api/AbstractService.h"

#include "service/api/HelpException.h"
#include "tests/service/api/CountingService.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using namespace EditorService;
using EditorService::Testing::CountingService;

namespace {

struct Collected {
    std::vector<nlohmann::json> values;
    std::exception_ptr error;
    bool completed = false;
};

Collected collect(const rxcpp::observable<nlohmann::json>& stream) {
    Collected collected;
    stream.subscribe([&](const nlohmann::json& value) { collected.values.push_back(value); },
                     [&](std::exception_ptr error) { collected.error = error; },
                     [&] { collected.completed = true; });
    return collected;
}

class ServiceWithoutSerializer : public AbstractService {
public:
    using AbstractService::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>&) override {
        return rxcpp::observable<>::just(nlohmann::json()).as_dynamic();
    }
};

TEST(AbstractServiceTest, RunOnArgumentListLoadsThroughTheServicesSerializer) {
    CountingService service;
    const auto collected = collect(service.run(QStringList{"program", "3"}));
    EXPECT_EQ(collected.values, (std::vector<nlohmann::json>{{{"n", 1}}, {{"n", 2}}, {{"n", 3}}}));
    EXPECT_TRUE(collected.completed);
}

TEST(AbstractServiceTest, LoadFailureIsTheErrorOfTheStreamAndNotAThrow) {
    CountingService service;
    rxcpp::observable<nlohmann::json> stream;
    ASSERT_NO_THROW(stream = service.run(QStringList{"program", "many"}));
    const auto collected = collect(stream);
    ASSERT_TRUE(collected.error);
    EXPECT_THAT(collected.error, FailedWith<Error>("count expected"));
    EXPECT_TRUE(collected.values.empty());
}

TEST(AbstractServiceTest, RunOnOneRequestHandsAStreamOfExactlyThatRequest) {
    CountingService service;
    auto request = std::make_shared<EditorService::Testing::CountRequest>();
    request->count = 2;
    const auto collected = collect(service.run(std::shared_ptr<Request>(request)));
    EXPECT_EQ(collected.values.size(), 2u);
    EXPECT_TRUE(collected.completed);
}

TEST(AbstractServiceTest, StreamSubscribedAfterTheServiceIsGoneRunsToItsEnd) {
    auto service = std::make_shared<CountingService>();
    const auto stream = service->run(QStringList{"program", "2"});
    std::weak_ptr<CountingService> watcher = service;
    service.reset();
    ASSERT_TRUE(watcher.expired());
    const auto collected = collect(stream);
    EXPECT_EQ(collected.values.size(), 2u);
    EXPECT_TRUE(collected.completed);
}

TEST(AbstractServiceTest, ServiceWithoutSerializerFailsItsCommandLineRunWithError) {
    ServiceWithoutSerializer service;
    EXPECT_THAT([&] { service.requestSerializer(); },
                FailedWith<Error>("This service reads no requests from a command line or JSON"));
    const auto collected = collect(service.run(QStringList{"program"}));
    EXPECT_TRUE(collected.error);
}

} // namespace
