#include "service/services/ScriptService.h"

#include "service/services/ScriptRequest.h"
#include "tests/stress/StressFixture.h"
#include "tests/support/FailedWith.h"

#include <QThread>
#include <memory>

using namespace EditorService;
using namespace EditorService::Testing;

namespace {

struct FaultRow {
    const char* name;
    const char* line;
    const char* message;
    int jobs;
    // A line that names no service fails as soon as it reaches the main thread, before the
    // queued commands in front of it have had their turn.
    bool failsOnArrival = false;
};

class ScriptServiceFaultTest : public StressFixture,
                               public testing::WithParamInterface<FaultRow> {};

// The faulty command stands between two good ones: the script ends with its error, once, with
// the same words, whichever thread the fault happened on. With one job at a time no value comes
// after the end and the third command never runs. With several commands in flight the merge
// does not serialise, so a value already under way on another thread may cross the error.
TEST_P(ScriptServiceFaultTest, FaultEndsTheScriptOnceWithItsOwnError) {
    const FaultRow& row = GetParam();
    const QString script = writeScript(QByteArray("value; 1\n") + row.line + "\nvalue; 3\n");
    ScriptService service(loader);
    const auto outcome = observe(service.run(std::make_shared<ScriptRequest>(script, row.jobs)));
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    spinFor(std::chrono::milliseconds(20));
    EXPECT_EQ(outcome->ends.load(), 1);
    ASSERT_TRUE(outcome->error);
    EXPECT_THAT(outcome->error, FailedWith<Error>(row.message));
    if (row.jobs == 1) {
        EXPECT_FALSE(outcome->valueAfterEnd.load());
    }
    if (row.jobs >= 1 && row.failsOnArrival) {
        EXPECT_TRUE(outcome->values.empty());
    }
    if (row.jobs == 1 && !row.failsOnArrival) {
        EXPECT_EQ(outcome->values, std::vector<nlohmann::json>{(nlohmann::json{{"value", 1}})});
    }
}

std::vector<FaultRow> faultRows() {
    const FaultRow faults[] = {
        {"Factory", "broken; 2", "factory failed", 0},
        {"Run", "throw-in-run; 2", "run failed", 0},
        {"Subscribe", "throw-on-subscribe; 2", "stream failed where it was subscribed", 0},
        {"MainThread", "throw-on-main-thread; 2", "stream failed on the main thread", 0},
        {"OwnThread", "throw-on-own-thread; 2", "stream failed on its own thread", 0},
        {"NoService", "--alone", "No service specified", 0, true},
    };
    std::vector<FaultRow> rows;
    for (const int jobs : {0, 1, 8}) {
        for (FaultRow row : faults) {
            row.jobs = jobs;
            rows.push_back(row);
        }
    }
    return rows;
}

INSTANTIATE_TEST_SUITE_P(Faults, ScriptServiceFaultTest, testing::ValuesIn(faultRows()),
                         [](const testing::TestParamInfo<FaultRow>& row) {
                             return std::string(row.param.name) + "Jobs"
                                    + std::to_string(row.param.jobs);
                         });

class ScriptServiceFaultStressTest : public StressFixture {};

// Faults in many commands at once, on many threads: one end, and it is one of the faults.
TEST_F(ScriptServiceFaultStressTest, ManyFaultsAtOnceEndTheScriptOnce) {
    QByteArray content;
    for (int line = 0; line < 300; ++line) {
        switch (line % 4) {
        case 0:
            content += "value-on-own-thread; " + QByteArray::number(line) + '\n';
            break;
        case 1:
            content += "throw-on-own-thread; " + QByteArray::number(line) + '\n';
            break;
        case 2:
            content += "throw-on-main-thread; " + QByteArray::number(line) + '\n';
            break;
        default:
            content += "value; " + QByteArray::number(line) + '\n';
        }
    }
    const QString script = writeScript(content);
    for (const int jobs : {0, 4}) {
        for (int round = 0; round < 10; ++round) {
            ScriptService service(loader);
            const auto outcome =
                observe(service.run(std::make_shared<ScriptRequest>(script, jobs)));
            ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
            spinFor(std::chrono::milliseconds(5));
            EXPECT_EQ(outcome->ends.load(), 1);
            EXPECT_THAT(outcome->error,
                        testing::AnyOf(FailedWith<Error>("stream failed on its own thread"),
                                       FailedWith<Error>("stream failed on the main thread")));
        }
    }
}

} // namespace
