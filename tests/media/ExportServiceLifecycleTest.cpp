#include "media/ExportService.h"

#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/foundation/OutputFile.h"
#include "platform/foundation/Temporaries.h"
#include "service/contexts/GlobalContextProvider.h"
#include "tests/media/LifecycleTable.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <unistd.h>
#include <vector>

using EditorService::ExportRun;
using EditorService::ExportRunFactory;
using EditorService::ExportService;
using EditorService::GlobalContextProvider;
using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::Lifecycle::Event;
using EditorService::Testing::Lifecycle::everyEvent;
using EditorService::Testing::Lifecycle::LifecycleTest;
using EditorService::Testing::Lifecycle::nameOf;
using EditorService::Testing::Lifecycle::record;

namespace {

// Where the export is when the events happen.
enum class Phase {
    Running,          // half-way, its temporary written, its render-job place taken
    WaitingForAPlace, // queued behind another export that holds the only place
};

struct Row {
    Phase phase;
    Event first;
    Event second;
    // --render-jobs: 0 starts the export without the render-job queue.
    int renderJobs;

    bool involves(Event event) const { return first == event || second == event; }
    // Whether the export under test ever starts.
    bool runs() const { return phase == Phase::Running; }
};

// gtest prints a failing row with this.
void PrintTo(const Row& row, std::ostream* out) {
    *out << nameOf(row.first) << " then " << nameOf(row.second) << " with " << row.renderJobs
         << " render jobs" << (row.runs() ? "" : ", waiting for a place");
}

std::string rowName(const testing::TestParamInfo<Row>& info) {
    return std::string(info.param.runs() ? "" : "Waiting") + nameOf(info.param.first) + "Then"
           + nameOf(info.param.second) + "With" + std::to_string(info.param.renderJobs)
           + "RenderJobs";
}

std::vector<Row> whileRunning() {
    std::vector<Row> rows;
    for (const int renderJobs : {0, 1, 3}) {
        for (const Event first : everyEvent) {
            for (const Event second : everyEvent) {
                if (first != second)
                    rows.push_back({Phase::Running, first, second, renderJobs});
            }
        }
    }
    return rows;
}

// An export that waits can not finish or fail itself: there Finish and Fail are those of the
// export that holds the place, which frees it.
std::vector<Row> whileWaiting() {
    std::vector<Row> rows;
    for (const Event first : {Event::Cancel, Event::Expire, Event::RuntimeGone}) {
        for (const Event second : everyEvent) {
            if (first != second)
                rows.push_back({Phase::WaitingForAPlace, first, second, 1});
        }
    }
    return rows;
}

// Where the stand-in exports stop half-way, with their temporary written, until the test lets
// them finish or fail, or they are cancelled. Shared by every export a factory makes.
struct Gate {
    enum class Release { Hold, Finish, Fail };

    std::mutex mutex;
    std::condition_variable changed;
    Release release = Release::Hold;
    std::vector<std::string> made; // the outputs of the exports made, in order
    int holding = 0;
    int running = 0;
    int ended = 0;
    bool temporaryListed = false;

    void open(Release how) {
        std::lock_guard<std::mutex> lock(mutex);
        release = how;
        changed.notify_all();
    }

    int count(const int Gate::*field) {
        std::lock_guard<std::mutex> lock(mutex);
        return this->*field;
    }

    std::vector<std::string> outputsMade() {
        std::lock_guard<std::mutex> lock(mutex);
        return made;
    }
};

// Writes its temporary through an output file, as the pipeline's exporter does, reports
// progress, waits at the gate, then puts the output in place or fails or is cancelled, the
// output file removing its temporary.
class HeldExport : public ExportRun {
public:
    HeldExport(std::shared_ptr<Gate> gate, Export::ExportSettings settings)
        : gate(std::move(gate))
        , settings(std::move(settings)) {}

    Export::ExportResult run(const Export::Exporter::Progress& progress) override {
        {
            std::lock_guard<std::mutex> lock(gate->mutex);
            ++gate->running;
        }
        struct Ended {
            Gate& gate;
            ~Ended() {
                std::lock_guard<std::mutex> lock(gate.mutex);
                --gate.running;
                ++gate.ended;
                gate.changed.notify_all();
            }
        } ended{*gate};

        Velmor::OutputFile file(settings.output, Velmor::OutputFile::Existing::Keep);
        const std::string bytes(100, 'x');
        if (::write(file.descriptor(), bytes.data(), bytes.size()) != 100)
            throw std::runtime_error("Can not write " + file.temporaryPath());
        progress({0.5, 1, 25.0});
        Gate::Release how = Gate::Release::Hold;
        {
            std::unique_lock<std::mutex> lock(gate->mutex);
            ++gate->holding;
            const auto listed = Velmor::Temporaries::paths();
            gate->temporaryListed =
                std::find(listed.begin(), listed.end(), file.temporaryPath()) != listed.end();
            gate->changed.notify_all();
            gate->changed.wait(lock,
                               [&] { return gate->release != Gate::Release::Hold || cancelled; });
            --gate->holding;
            how = cancelled ? Gate::Release::Hold : gate->release;
        }
        if (how != Gate::Release::Finish) {
            if (how == Gate::Release::Fail)
                throw std::runtime_error("No space left on device");
            throw Export::ExportCancelled(settings.output);
        }
        if (::write(file.descriptor(), bytes.data(), bytes.size()) != 100)
            throw std::runtime_error("Can not write " + file.temporaryPath());
        file.commit();
        Export::ExportResult result;
        result.frames = 2;
        result.durationMs = 80;
        result.bytes = 200;
        result.video = Export::ExportResult::Video{"h264", 320, 240, 20000};
        return result;
    }

    void cancel() override {
        std::lock_guard<std::mutex> lock(gate->mutex);
        cancelled = true;
        gate->changed.notify_all();
    }

private:
    std::shared_ptr<Gate> gate;
    Export::ExportSettings settings;
    bool cancelled = false; // under the gate's mutex
};

ExportRunFactory heldExports(const std::shared_ptr<Gate>& gate) {
    return [gate](const Export::ExportSettings& settings) -> std::unique_ptr<ExportRun> {
        {
            std::lock_guard<std::mutex> lock(gate->mutex);
            gate->made.push_back(settings.output);
        }
        return std::make_unique<HeldExport>(gate, settings);
    };
}

} // namespace

// Each row holds an export at a point of its life, lets two events happen to it and checks:
// the stream ends once, as the first event says (not at all after a cancel); nothing is
// delivered after that end; no export runs or keeps a temporary afterwards; the render-job
// place is free for the next export; and the exports' shared state is let go.
class ExportServiceLifecycleTest : public LifecycleTest<Row> {
protected:
    void SetUp() override {
        LifecycleTest::SetUp();
        ASSERT_TRUE(outputs.isValid());
    }
    void TearDown() override {
        // A failed row may leave an export at the gate, which the runtime's end waits for.
        gate->open(Gate::Release::Fail);
        LifecycleTest::TearDown();
    }

    void startRuntime(int renderJobs) {
        LifecycleTest::startRuntime({"app", QStringLiteral("--render-jobs=%1").arg(renderJobs)},
                                    GlobalContextProvider::Media);
    }

    QString output(const QString& name = QStringLiteral("out.mp4")) const {
        return outputs.filePath(name);
    }
    QStringList files() const { return QDir(outputs.path()).entryList(QDir::Files, QDir::Name); }

    // The export as the host runs it: the service is gone once the stream is made.
    rxcpp::observable<nlohmann::json> exportTo(const QString& path) const {
        ExportService service(heldExports(gate));
        return service.run(QStringList{"app", QString::fromStdString(mediaFixture("h264_aac.mp4")),
                                       "--output=" + path});
    }

    // Runs an export to its end; false when it does not end.
    bool exportsToItsEnd(const QString& path) {
        rxcpp::composite_subscription subscription;
        auto ended = std::make_shared<std::atomic<bool>>(false);
        exportTo(path).subscribe(
            subscription, [](const nlohmann::json&) {}, [ended](std::exception_ptr) {},
            [ended] { *ended = true; });
        return settleUntil([&] { return ended->load(); });
    }

    // Until no export is on its way: `holders` wait at the gate, every other has ended, and
    // no task but theirs is under way.
    bool settled(int holders) {
        return settleUntil([this, holders] {
            std::lock_guard<std::mutex> lock(gate->mutex);
            return gate->holding == holders && gate->running == holders
                   && (holders > 0 || tasks->idle());
        });
    }

    void happen(Event event, const Row& row) {
        // Only the export that holds the place while the one under test waits stays held.
        const int holders = row.runs() || event == Event::Finish || event == Event::Fail
                                    || event == Event::RuntimeGone
                                ? 0
                                : gate->count(&Gate::holding);
        switch (event) {
        case Event::Finish:
            gate->open(Gate::Release::Finish);
            break;
        case Event::Fail:
            gate->open(Gate::Release::Fail);
            break;
        case Event::Cancel:
            cancel();
            break;
        case Event::Expire:
            // A progress value that crosses the timer's advance re-arms it; advancing again
            // expires it, still without a real wait.
            timer->advanceBy(limit);
            for (int tries = 0; row.first == Event::Expire && log->endCount() == 0 && tries < 100;
                 ++tries)
                timer->advanceBy(limit);
            break;
        case Event::RuntimeGone:
            runtimeGone();
            break;
        }
        ASSERT_TRUE(settled(holders)) << nameOf(event);
    }

    QTemporaryDir outputs;
    std::shared_ptr<Gate> gate = std::make_shared<Gate>();
};

TEST_P(ExportServiceLifecycleTest, TheFirstEventEndsTheStreamOnceAndNothingOutlivesIt) {
    const Row row = GetParam();
    startRuntime(row.renderJobs);
    ASSERT_FALSE(HasFatalFailure());
    rxcpp::composite_subscription blocking;
    if (!row.runs()) {
        exportTo(output("blocking.mp4"))
            .subscribe(
                blocking, [](const nlohmann::json&) {}, [](std::exception_ptr) {});
        ASSERT_TRUE(settleUntil([this] { return gate->count(&Gate::holding) == 1; }));
        ASSERT_TRUE(settleUntil([this] { return parses->idle(); }));
    }
    const int parsed = parses->idleCount();
    record(limited(exportTo(output()), row), lifetime, log);
    if (row.runs()) {
        ASSERT_TRUE(settleUntil([this] { return gate->count(&Gate::holding) == 1; }));
        EXPECT_TRUE(gate->temporaryListed);
    } else {
        // Its input parsed, it waits in the place's queue.
        ASSERT_TRUE(settleUntil([&] { return parses->idleCount() > parsed; }));
    }
    EXPECT_EQ(log->endCount(), 0);

    happen(row.first, row);
    ASSERT_FALSE(HasFatalFailure());
    const std::size_t valuesAtFirst = log->valueCount();
    happen(row.second, row);
    ASSERT_FALSE(HasFatalFailure());

    {
        std::lock_guard<std::mutex> lock(log->mutex);
        switch (row.first) {
        case Event::Finish:
            EXPECT_TRUE(log->completed);
            ASSERT_FALSE(log->values.empty());
            EXPECT_EQ(log->values.back().at("export").at("done"), true);
            break;
        case Event::Fail:
            EXPECT_THAT(log->error, FailedWith<std::runtime_error>("No space left on device"));
            break;
        case Event::RuntimeGone:
            EXPECT_THAT(log->error, FailedWith<Export::ExportCancelled>("Export cancelled: "
                                                                        + output().toStdString()));
            break;
        case Event::Cancel:
        case Event::Expire:
            break;
        }
    }
    expectEndedOnceBy(row.first, valuesAtFirst);
    EXPECT_EQ(QFile::exists(output()), row.runs() && row.first == Event::Finish);

    // The place is free again: the next export takes it and ends (the one that held it too,
    // let through). The export that waited and was let go before never started.
    if (provider) {
        gate->open(Gate::Release::Finish);
        ASSERT_TRUE(exportsToItsEnd(output("next.mp4")));
        EXPECT_TRUE(QFile::exists(output("next.mp4")));
        const auto made = gate->outputsMade();
        ASSERT_FALSE(made.empty());
        EXPECT_EQ(made.back(), output("next.mp4").toStdString());
        EXPECT_EQ(std::count(made.begin(), made.end(), output().toStdString()), row.runs() ? 1 : 0);
    }
    EXPECT_EQ(gate->count(&Gate::running), 0);
    EXPECT_TRUE(Velmor::Temporaries::paths().empty());
    EXPECT_TRUE(files().filter(".reelsmith-partial").isEmpty()) << files().join(' ').toStdString();

    // Whatever held the exports' factory, and with it the gate, has let go.
    lifetime.unsubscribe();
    blocking.unsubscribe();
    EXPECT_TRUE(heldByTheTestAlone(gate)) << gate.use_count();
}

INSTANTIATE_TEST_SUITE_P(Running, ExportServiceLifecycleTest, testing::ValuesIn(whileRunning()),
                         rowName);
INSTANTIATE_TEST_SUITE_P(WaitingForAPlace, ExportServiceLifecycleTest,
                         testing::ValuesIn(whileWaiting()), rowName);
