#include "service/services/ScriptService.h"

#include "service/services/ScriptRequest.h"
#include "tests/stress/StressFixture.h"
#include "tests/stress/StressScale.h"

#include <algorithm>
#include <cstdint>
#include <memory>

using namespace EditorService;
using namespace EditorService::Testing;

namespace {

// Counts, per value, how often it arrived, from any number of threads at once.
class ArrivalCounts {
public:
    explicit ArrivalCounts(int size)
        : size(size)
        , counts(new std::atomic<std::uint8_t>[std::size_t(size)]()) {}

    void add(const nlohmann::json& value) {
        const int number = value.at("value").get<int>();
        if (number < 0 || number >= size) {
            ++strayCount;
            return;
        }
        counts[std::size_t(number)].fetch_add(1);
    }

    // The first value that did not arrive exactly once, or -1.
    int firstWrong() const {
        for (int number = 0; number < size; ++number) {
            if (counts[std::size_t(number)].load() != 1)
                return number;
        }
        return -1;
    }

    int strays() const { return strayCount.load(); }

private:
    int size;
    std::unique_ptr<std::atomic<std::uint8_t>[]> counts;
    std::atomic<int> strayCount{0};
};

struct JobsRow {
    const char* name;
    int jobs;
};

class ScriptServiceStressTest : public StressFixture {
protected:
    rxcpp::observable<nlohmann::json> runScript(const QString& path, int jobs) {
        ScriptService service(loader);
        return service.run(std::make_shared<ScriptRequest>(path, jobs));
    }
};

class ScriptServiceBigScriptTest : public ScriptServiceStressTest,
                                   public testing::WithParamInterface<JobsRow> {};

TEST_P(ScriptServiceBigScriptTest, EveryValueOfAMillionLinesArrivesExactlyOnce) {
    const int lines = stressLines();
    QByteArray script;
    script.reserve(lines * 16);
    for (int line = 0; line < lines; ++line)
        script += "value; " + QByteArray::number(line) + '\n';
    const QString path = writeScript(script);
    script.clear();

    auto counts = std::make_shared<ArrivalCounts>(lines);
    auto ends = std::make_shared<std::atomic<int>>(0);
    auto error = std::make_shared<std::exception_ptr>();
    runScript(path, GetParam().jobs)
        .subscribe([counts](const nlohmann::json& value) { counts->add(value); },
                   [ends, error](std::exception_ptr failure) {
                       *error = failure;
                       ++*ends;
                   },
                   [ends] { ++*ends; });
    ASSERT_TRUE(runLoopUntil([ends] { return ends->load() > 0; }, std::chrono::minutes(4)));
    ASSERT_FALSE(*error) << failureText(*error);
    EXPECT_EQ(ends->load(), 1);
    EXPECT_EQ(counts->strays(), 0);
    EXPECT_EQ(counts->firstWrong(), -1);
    EXPECT_EQ(probe->created.load(), lines);
}

INSTANTIATE_TEST_SUITE_P(Jobs, ScriptServiceBigScriptTest,
                         testing::Values(JobsRow{"Unlimited", 0}, JobsRow{"One", 1},
                                         JobsRow{"Eight", 8}),
                         [](const testing::TestParamInfo<JobsRow>& row) {
                             return std::string(row.param.name);
                         });

TEST_F(ScriptServiceStressTest, LoaderGoneWhileACommandRunsFailsTheNextCommandWithLoaderGone) {
    const auto outcome = observe(runScript(writeScript("gate\nvalue; 1\n"), 1));
    ASSERT_TRUE(spinUntil([this] { return probe->subscribed.load() == 1; }));
    loader.reset();
    probe->gate.get_subscriber().on_completed();
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    EXPECT_EQ(outcome->ends.load(), 1);
    EXPECT_EQ(outcome->valueCount.load(), 0);
    ASSERT_TRUE(outcome->error);
    try {
        std::rethrow_exception(outcome->error);
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "The service loader is gone");
    }
}

TEST_F(ScriptServiceStressTest, LoaderGoneBeforeTheFirstCommandArrivesFailsWithLoaderGone) {
    for (const int jobs : {0, 1, 8}) {
        loader = std::make_shared<ServiceLoader>();
        registerStressServices(*loader, probe);
        const auto outcome = observe(runScript(writeScript("value; 1\nvalue; 2\n"), jobs));
        // The file has been read inside subscribe; its commands wait for the main thread.
        loader.reset();
        ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); })) << jobs;
        EXPECT_EQ(outcome->ends.load(), 1) << jobs;
        EXPECT_EQ(outcome->valueCount.load(), 0) << jobs;
        ASSERT_TRUE(outcome->error) << jobs;
        try {
            std::rethrow_exception(outcome->error);
        } catch (const Error& error) {
            EXPECT_STREQ(error.what(), "The service loader is gone") << jobs;
        }
    }
}

TEST_F(ScriptServiceStressTest, UnsubscribingReleasesRunningCommandsThatNeverEndWithoutALimit) {
    rxcpp::composite_subscription lifetime;
    const auto outcome = observe(runScript(writeScript("silent\nsilent\nsilent\n"), 0), lifetime);
    ASSERT_TRUE(spinUntil([this] { return probe->subscribed.load() == 3; }));
    lifetime.unsubscribe();
    EXPECT_EQ(probe->released.load(), 3);
    spinFor(std::chrono::milliseconds(50));
    EXPECT_FALSE(outcome->ended());
    std::lock_guard<std::mutex> lock(probe->mutex);
    EXPECT_TRUE(probe->lastToken.expired());
}

TEST_F(ScriptServiceStressTest, UnsubscribingStopsCommandsEmittingOnTheirOwnThreadsWithoutALimit) {
    rxcpp::composite_subscription lifetime;
    const auto outcome =
        observe(runScript(writeScript("endless\nendless\nendless\n"), 0), lifetime, false);
    ASSERT_TRUE(spinUntil([this] { return probe->emitted.load() > 100; }));
    lifetime.unsubscribe();
    EXPECT_EQ(probe->released.load(), 3);
    const long emitted = probe->emitted.load();
    spinFor(std::chrono::milliseconds(50));
    EXPECT_EQ(probe->emitted.load(), emitted);
    EXPECT_FALSE(outcome->ended());
}

// A started command is not cancelled under a limit: its subscription belongs to the command's
// own subject, not to the script's stream. What the script held goes all the same: the limiter,
// the queued commands, and the subject once nothing feeds it any more.
TEST_F(ScriptServiceStressTest,
       UnsubscribingUnderALimitStartsNoQueuedCommandAndLeavesNothingBehind) {
    for (const int jobs : {1, 2}) {
        probe = std::make_shared<StressProbe>();
        auto loaderBlocks = std::make_shared<std::atomic<int>>(0);
        loader =
            std::allocate_shared<ServiceLoader>(TrackingAllocator<ServiceLoader>(loaderBlocks));
        registerStressServices(*loader, probe);
        rxcpp::composite_subscription lifetime;
        const auto outcome =
            observe(runScript(writeScript("silent\nsilent\nsilent\nsilent\n"), jobs), lifetime);
        ASSERT_TRUE(spinUntil([this, jobs] { return probe->subscribed.load() == jobs; })) << jobs;
        lifetime.unsubscribe();
        spinFor(std::chrono::milliseconds(100));
        EXPECT_EQ(probe->subscribed.load(), jobs) << jobs;
        EXPECT_FALSE(outcome->ended()) << jobs;

        // Every job, queued or started, holds the loader weakly.
        loader.reset();
        EXPECT_TRUE(spinUntil([loaderBlocks] { return loaderBlocks->load() == 0; },
                              std::chrono::seconds(10)))
            << "a command of the script is still held, jobs " << jobs;
        std::weak_ptr<int> token;
        {
            std::lock_guard<std::mutex> lock(probe->mutex);
            token = probe->lastToken;
        }
        EXPECT_TRUE(spinUntil([token] { return token.expired(); }, std::chrono::seconds(10)))
            << "the subject of a started command outlived the script, jobs " << jobs;
    }
}

TEST_F(ScriptServiceStressTest, ManyScriptsAtOnceEachDeliverTheirOwnValues) {
    const int scripts = 32;
    const int linesEach = 200;
    std::vector<std::shared_ptr<Outcome>> outcomes;
    for (int script = 0; script < scripts; ++script) {
        QByteArray content;
        for (int line = 0; line < linesEach; ++line) {
            content += (line % 3 == 0 ? "value-on-own-thread; " : "value; ")
                       + QByteArray::number(script * linesEach + line) + '\n';
        }
        outcomes.push_back(observe(runScript(writeScript(content), script % 4)));
    }
    ASSERT_TRUE(spinUntil([&outcomes] {
        for (const auto& outcome : outcomes) {
            if (!outcome->ended())
                return false;
        }
        return true;
    }));
    for (int script = 0; script < scripts; ++script) {
        const auto& outcome = outcomes[std::size_t(script)];
        ASSERT_FALSE(outcome->error) << failureText(outcome->error);
        EXPECT_EQ(outcome->ends.load(), 1);
        std::vector<int> numbers;
        for (const auto& value : outcome->values)
            numbers.push_back(value.at("value").get<int>());
        std::sort(numbers.begin(), numbers.end());
        ASSERT_EQ(int(numbers.size()), linesEach) << script;
        for (int line = 0; line < linesEach; ++line)
            EXPECT_EQ(numbers[std::size_t(line)], script * linesEach + line);
    }
}

} // namespace
