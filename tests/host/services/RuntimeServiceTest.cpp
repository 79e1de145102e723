#include "host/services/RuntimeService.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/package/PackageDirectory.h"
#include "service/api/Error.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>

using EditorService::Error;
using EditorService::GlobalContextProvider;
using EditorService::Testing::collectToEnd;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureText;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

int countOf(const std::string& entry) {
    const auto entries = CallLog::entries();
    return static_cast<int>(std::count(entries.begin(), entries.end(), entry));
}

} // namespace

class RuntimeServiceTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(packages.isValid());
        Package::setPackageDirectory(packages.path());
        Probe::clear();
        CallLog::clear();
    }
    void TearDown() override {
        provider.reset();
        Probe::clear();
        Package::setPackageDirectory(QString());
    }

    std::shared_ptr<EditorService::Testing::Collected> run(const QStringList& arguments) {
        RuntimeService service;
        return collectToEnd(service.run(QStringList{"app"} + arguments));
    }

    QTemporaryDir packages;
    std::optional<GlobalContextProvider> provider;
};

TEST_F(RuntimeServiceTest, ServiceIdIsRuntime) {
    EXPECT_EQ(RuntimeService::serviceId(), "runtime");
}

TEST_F(RuntimeServiceTest, RequireOptionDefaultsToAll) {
    const auto option = RuntimeRequest::requireOption();
    EXPECT_EQ(option.names(), QStringList{"require"});
    EXPECT_EQ(option.valueName(), "contexts");
    EXPECT_EQ(option.defaultValues(), QStringList{"all"});
    EXPECT_EQ(RuntimeRequest().require, "all");
}

struct Requirement {
    const char* name;
    QStringList arguments;
    std::vector<std::string> contexts;
};

class RuntimeServiceRequireTest : public RuntimeServiceTest,
                                  public testing::WithParamInterface<Requirement> {};

TEST_P(RuntimeServiceRequireTest, StartsTheNamedContextsAndTellsWhichAreUp) {
    provider.emplace(QStringList{"app"});
    const auto collected = run(GetParam().arguments);
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    ASSERT_EQ(collected->values.size(), 1u);
    const auto& runtime = collected->values[0].at("runtime");
    EXPECT_EQ(runtime.size(), 3u);
    EXPECT_EQ(runtime.at("contexts").get<std::vector<std::string>>(), GetParam().contexts);
    EXPECT_EQ(runtime.at("required").get<std::vector<std::string>>(), GetParam().contexts);
    ASSERT_TRUE(runtime.at("milliseconds").is_number_integer());
    EXPECT_GE(runtime.at("milliseconds").get<long long>(), 0);

    const std::vector<std::pair<std::string, std::string>> marks{
        {"engine", "CoreManager::Initialize"},
        {"media", "Connection::Synchronizer::Synchronizer"},
        {"content", "Resource::RedirectionTableHolder::RedirectionTableHolder"},
        {"render", "Composition::Controller::Controller"}};
    for (const auto& [context, mark] : marks) {
        const bool up = std::find(GetParam().contexts.begin(), GetParam().contexts.end(), context)
                        != GetParam().contexts.end();
        EXPECT_EQ(countOf(mark), up ? 1 : 0) << context;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Names, RuntimeServiceRequireTest,
    testing::Values(
        Requirement{"Engine", {"--require=engine"}, {"engine"}},
        Requirement{"Media", {"--require=media"}, {"engine", "media"}},
        Requirement{"Content", {"--require=content"}, {"engine", "media", "content"}},
        Requirement{"Render", {"--require=render"}, {"engine", "media", "content", "render"}},
        Requirement{"All", {"--require=all"}, {"engine", "media", "content", "render"}},
        Requirement{"Absent", {}, {"engine", "media", "content", "render"}},
        Requirement{"List", {"--require", "content,engine"}, {"engine", "media", "content"}},
        Requirement{"SpacesAndEmptyItems", {"--require= media ,, engine,"}, {"engine", "media"}},
        Requirement{"Empty", {"--require="}, {}}),
    [](const testing::TestParamInfo<Requirement>& info) { return info.param.name; });

TEST_F(RuntimeServiceTest, AContextAlreadyUpCostsNothingAndIsReported) {
    provider.emplace(QStringList{"app"});
    provider->require(GlobalContextProvider::Media);
    CallLog::clear();
    const auto collected = run({"--require=engine"});
    ASSERT_EQ(collected->values.size(), 1u);
    EXPECT_EQ(collected->values[0]["runtime"]["contexts"], nlohmann::json({"engine", "media"}));
    EXPECT_EQ(collected->values[0]["runtime"]["required"], nlohmann::json({"engine"}));
    EXPECT_TRUE(CallLog::entries().empty());
}

TEST_F(RuntimeServiceTest, AfterAHotStartEveryContextIsReportedUpBesideWhatWasRequired) {
    provider.emplace(QStringList{"app", "--hot-start"});
    CallLog::clear();
    const auto collected = run({"--require=engine"});
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    ASSERT_EQ(collected->values.size(), 1u);
    EXPECT_EQ(collected->values[0]["runtime"]["contexts"],
              nlohmann::json({"engine", "media", "content", "render"}));
    EXPECT_EQ(collected->values[0]["runtime"]["required"], nlohmann::json({"engine"}));
    EXPECT_TRUE(CallLog::entries().empty());
}

TEST_F(RuntimeServiceTest, AnEmptyRequireReportsWhatIsUpAndRequiresNothing) {
    provider.emplace(QStringList{"app"});
    provider->require(GlobalContextProvider::Engine);
    const auto collected = run({"--require="});
    ASSERT_EQ(collected->values.size(), 1u);
    EXPECT_EQ(collected->values[0]["runtime"]["contexts"], nlohmann::json({"engine"}));
    EXPECT_EQ(collected->values[0]["runtime"]["required"], nlohmann::json::array());
}

TEST_F(RuntimeServiceTest, AnUnknownContextNameFailsWithErrorAndStartsNothing) {
    provider.emplace(QStringList{"app"});
    const auto collected = run({"--require=engine,audio"});
    ASSERT_TRUE(collected->error);
    EXPECT_TRUE(collected->values.empty());
    EXPECT_THAT(collected->error,
                FailedWith<Error>(
                    "Unknown context \"audio\", expects engine, media, content, render or all"));
    EXPECT_TRUE(CallLog::entries().empty());
}

TEST_F(RuntimeServiceTest, PlaceholdersInAnUnknownNameAreQuotedAsTheyCame) {
    EXPECT_THAT(
        [&] {
            RuntimeRequest::Serializer().loadFromJson({{"require", "%1,%2"}});
        },
        FailedWith<Error>("Unknown context \"%1\", expects engine, media, content, render or all"));
}

TEST_F(RuntimeServiceTest, NamesAreComparedWithCase) {
    EXPECT_THAT(
        [&] {
            RuntimeRequest::Serializer().loadFromJson({{"require", "Engine"}});
        },
        FailedWith<Error>(
            "Unknown context \"Engine\", expects engine, media, content, render or all"));
}

TEST_F(RuntimeServiceTest, WithoutAProviderTheStreamFailsWithError) {
    const auto collected = run({"--require=engine"});
    ASSERT_TRUE(collected->error);
    EXPECT_THAT(collected->error,
                FailedWith<Error>("No runtime: the process has no GlobalContextProvider"));
}

TEST_F(RuntimeServiceTest, AContextThatFailsToStartEndsTheStreamWithItsError) {
    provider.emplace(QStringList{"app"});
    Probe::failNext("OglManager::Initialize");
    const auto collected = run({"--require=media"});
    ASSERT_TRUE(collected->error);
    EXPECT_TRUE(collected->values.empty());
    EXPECT_THAT(collected->error,
                FailedWith<std::runtime_error>("Injected failure at OglManager::Initialize"));
}

TEST_F(RuntimeServiceTest, TheRequestReadsAndWritesItsCommandLineAndJsonForms) {
    RuntimeRequest::Serializer serializer;
    const auto fromCli = serializer.loadFromCli({"app", "--require=render,media"});
    EXPECT_EQ(dynamic_cast<const RuntimeRequest&>(*fromCli).require, "render,media");
    EXPECT_EQ(serializer.toJson(*fromCli), nlohmann::json({{"require", "render,media"}}));
    const auto fromJson = serializer.loadFromJson({{"require", "engine"}});
    EXPECT_TRUE(serializer.toCli(*fromJson).contains("--require=engine"));
}
