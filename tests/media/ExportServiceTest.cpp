#include "media/ExportService.h"

#include "platform/av/MediaError.h"
#include "platform/editorlogic/FileController.h"
#include "platform/engine/PluginError.h"
#include "platform/export/Exporter.h"
#include "platform/foundation/OutputFile.h"
#include "platform/package/PackageDirectory.h"
#include "service/api/Error.h"
#include "service/contexts/GlobalContextProvider.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"
#include "tests/support/Releaser.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <unistd.h>

using EditorService::Error;
using EditorService::ExportRequest;
using EditorService::ExportRun;
using EditorService::ExportService;
using EditorService::GlobalContextProvider;
using EditorService::Testing::collect;
using EditorService::Testing::Collected;
using EditorService::Testing::collectToEnd;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureText;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::spinUntil;
using namespace std::chrono_literals;

using EditorService::Testing::Releaser;

namespace {

// What the stand-in exports do, and what they saw; shared by every export a factory makes.
struct Pipeline {
    int frames = 5;
    std::chrono::milliseconds perFrame{5};
    // Throws this at the frame of that number, when set.
    std::optional<int> failAt;
    std::function<std::exception_ptr()> failure = [] {
        return std::make_exception_ptr(std::runtime_error("No space left on device"));
    };
    // Each export waits before its first frame until this many have run at once (or a minute):
    // once they have, the rest go on, so that the last of a batch never waits alone.
    int waitForRunning = 1;

    std::mutex mutex;
    std::condition_variable changed;
    int running = 0;
    int mostRunning = 0;
    int made = 0;
    std::vector<Export::ExportSettings> settings;
};

// Writes its output a frame at a time through an output file, as the pipeline's exporter does.
class StandInExport : public ExportRun {
public:
    StandInExport(std::shared_ptr<Pipeline> pipeline, Export::ExportSettings settings)
        : shared(std::move(pipeline))
        , settings(std::move(settings)) {}

    Export::ExportResult run(const Export::Exporter::Progress& progress) override {
        auto& pipeline = *shared;
        {
            std::unique_lock<std::mutex> lock(pipeline.mutex);
            ++pipeline.running;
            pipeline.mostRunning = std::max(pipeline.mostRunning, pipeline.running);
            pipeline.changed.notify_all();
            pipeline.changed.wait_for(lock, 60s, [&] {
                return pipeline.mostRunning >= pipeline.waitForRunning || cancelled;
            });
        }
        std::exception_ptr failure;
        Export::ExportResult result;
        try {
            result = frames(progress);
        } catch (...) {
            failure = std::current_exception();
        }
        {
            std::lock_guard<std::mutex> lock(pipeline.mutex);
            --pipeline.running;
        }
        if (failure)
            std::rethrow_exception(failure);
        return result;
    }

    void cancel() override {
        std::lock_guard<std::mutex> lock(shared->mutex);
        cancelled = true;
        shared->changed.notify_all();
    }

private:
    Export::ExportResult frames(const Export::Exporter::Progress& progress) {
        auto& pipeline = *shared;
        using Existing = Velmor::OutputFile::Existing;
        Velmor::OutputFile file(settings.output,
                                settings.overwrite ? Existing::Replace : Existing::Keep);
        const std::string bytes(100, 'x');
        for (int frame = 1; frame <= pipeline.frames; ++frame) {
            if (cancelled)
                throw Export::ExportCancelled(settings.output);
            if (pipeline.failAt && *pipeline.failAt == frame)
                std::rethrow_exception(pipeline.failure());
            std::this_thread::sleep_for(pipeline.perFrame);
            if (::write(file.descriptor(), bytes.data(), bytes.size()) != 100)
                throw std::runtime_error("Can not write " + file.temporaryPath());
            progress({double(frame) / pipeline.frames, frame, 25.0});
        }
        file.commit();
        Export::ExportResult result;
        result.frames = pipeline.frames;
        result.durationMs = pipeline.frames * 40;
        result.bytes = pipeline.frames * 100;
        result.video = Export::ExportResult::Video{"h264", settings.preset.width(),
                                                   settings.preset.height(), 1000};
        result.audio = Export::ExportResult::Audio{"aac", 44100, 2, 128000};
        return result;
    }

    std::shared_ptr<Pipeline> shared;
    Export::ExportSettings settings;
    std::atomic<bool> cancelled{false};
};

EditorService::ExportRunFactory standIn(const std::shared_ptr<Pipeline>& pipeline) {
    return [pipeline](const Export::ExportSettings& settings) -> std::unique_ptr<ExportRun> {
        {
            std::lock_guard<std::mutex> lock(pipeline->mutex);
            ++pipeline->made;
            pipeline->settings.push_back(settings);
        }
        return std::make_unique<StandInExport>(pipeline, settings);
    };
}

} // namespace

class ExportServiceTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(packages.isValid());
        ASSERT_TRUE(outputs.isValid());
        Package::setPackageDirectory(packages.path());
    }
    void TearDown() override {
        releaseParses();
        provider.reset();
        Package::setPackageDirectory(QString());
    }

    // Holds the file controller's one thread until releaseParses(), so that the parse of an
    // export started meanwhile waits behind the hold.
    void holdParses() {
        provider->require(GlobalContextProvider::Media);
        auto* parses = Media::FileController::instance();
        ASSERT_TRUE(parses);
        std::promise<void> started;
        parses->submit([&started, released = parsesReleased.get_future().share()] {
            started.set_value();
            released.wait();
        });
        ASSERT_EQ(started.get_future().wait_for(60s), std::future_status::ready);
    }
    void releaseParses() {
        std::call_once(parsesReleasedOnce, [this] { parsesReleased.set_value(); });
    }

    void startRuntime(int renderJobs = 1) {
        provider.emplace(QStringList{"app", QStringLiteral("--render-jobs=%1").arg(renderJobs)});
    }

    QString output(const QString& name) const { return outputs.filePath(name); }

    QStringList exportOf(const std::string& fixture, const QString& name,
                         const QStringList& more = {}) const {
        return QStringList{"app", QString::fromStdString(mediaFixture(fixture)),
                           "--output=" + output(name)}
               + more;
    }

    std::shared_ptr<Collected> run(const QStringList& arguments) {
        ExportService service(standIn(pipeline));
        return collectToEnd(service.run(arguments));
    }

    // Starts `count` exports of one input at once and waits until each has ended, none failed.
    void exportEachToItsEnd(ExportService& service, int count) {
        std::vector<std::shared_ptr<Collected>> runs;
        for (int i = 0; i < count; ++i)
            runs.push_back(
                collect(service.run(exportOf("h264_aac.mp4", QStringLiteral("out%1.mp4").arg(i)))));
        ASSERT_TRUE(spinUntil([&] {
            return std::all_of(runs.begin(), runs.end(),
                               [](const auto& run) { return run->ended(); });
        }));
        for (const auto& run : runs)
            ASSERT_FALSE(run->error) << failureText(run->error);
    }

    // Lists nothing at the outputs' directory but the given names.
    QStringList files() const { return QDir(outputs.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir packages;
    QTemporaryDir outputs;
    std::optional<GlobalContextProvider> provider;
    std::shared_ptr<Pipeline> pipeline = std::make_shared<Pipeline>();
    std::promise<void> parsesReleased;
    std::once_flag parsesReleasedOnce;
};

TEST_F(ExportServiceTest, ServiceIdIsExport) {
    EXPECT_EQ(ExportService::serviceId(), "export");
}

TEST_F(ExportServiceTest, TheDefaultPresetTakesTheInputsFrameSizeAndTheRangeIsPassedOn) {
    startRuntime();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4", {"--range=500:1500"}));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    ASSERT_EQ(pipeline->settings.size(), 1u);
    const auto& settings = pipeline->settings[0];
    EXPECT_EQ(settings.input, mediaFixture("h264_aac.mp4"));
    EXPECT_EQ(settings.output, output("out.mp4").toStdString());
    EXPECT_EQ(settings.preset.id(), "mp4");
    EXPECT_EQ(settings.preset.width(), 320);
    EXPECT_EQ(settings.preset.height(), 240);
    EXPECT_EQ(settings.range, Types::Range(500, 1500));
}

TEST_F(ExportServiceTest, AFixedPresetKeepsItsOwnSize) {
    startRuntime();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4", {"--preset=720p"}));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    ASSERT_EQ(pipeline->settings.size(), 1u);
    EXPECT_EQ(pipeline->settings[0].preset.width(), 1280);
    EXPECT_EQ(pipeline->settings[0].preset.height(), 720);
}

TEST_F(ExportServiceTest, EndsWithOneDoneValueThatDescribesTheOutput) {
    startRuntime();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4"));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    ASSERT_FALSE(collected->values.empty());
    const auto done = collected->values.back().at("export");
    EXPECT_EQ(done.at("input"), mediaFixture("h264_aac.mp4"));
    EXPECT_EQ(done.at("output"), output("out.mp4").toStdString());
    EXPECT_EQ(done.at("done"), true);
    EXPECT_EQ(done.at("frames"), 5);
    EXPECT_EQ(done.at("duration_ms"), 200);
    EXPECT_EQ(done.at("bytes"), 500);
    EXPECT_EQ(
        done.at("video"),
        (nlohmann::json{{"codec", "h264"}, {"width", 320}, {"height", 240}, {"bit_rate", 1000}}));
    EXPECT_EQ(
        done.at("audio"),
        (nlohmann::json{
            {"codec", "aac"}, {"sample_rate", 44100}, {"channels", 2}, {"bit_rate", 128000}}));
    EXPECT_LE(done.at("started_ms").get<std::int64_t>(),
              done.at("finished_ms").get<std::int64_t>());
    EXPECT_EQ(files(), QStringList{"out.mp4"});
}

TEST_F(ExportServiceTest, ProgressValuesComeWhileItRunsBeforeTheDoneValue) {
    startRuntime();
    pipeline->frames = 20;
    pipeline->perFrame = 30ms;
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4"));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    ASSERT_GE(collected->values.size(), 2u);
    for (std::size_t i = 0; i + 1 < collected->values.size(); ++i) {
        const auto& progress = collected->values[i].at("export");
        EXPECT_EQ(progress.at("output"), output("out.mp4").toStdString());
        EXPECT_GE(progress.at("progress").get<double>(), 0.0);
        EXPECT_LE(progress.at("progress").get<double>(), 1.0);
        EXPECT_TRUE(progress.contains("frames"));
        EXPECT_TRUE(progress.contains("fps"));
        EXPECT_FALSE(progress.contains("done"));
    }
}

TEST_F(ExportServiceTest, AnOddInputWithTheOriginalFrameSizeFailsAsThePresetSays) {
    startRuntime();
    const auto collected =
        run(exportOf("wide_1921x1080.mp4", "out.mp4", {"--preset-frame-size=original"}));
    EXPECT_THAT(collected->error, FailedWith<Error>("Frame size must be even."));
    EXPECT_EQ(pipeline->made, 0);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ExportServiceTest, AnUnknownPresetFailsWithThePresetsWords) {
    startRuntime();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4", {"--preset=9000p"}));
    EXPECT_THAT(collected->error,
                FailedWith<Error>("Unknown preset: 9000p\nAvailable presets:\nmp4\n2160p\n"
                                  "1440p\n1080p\n720p\n480p\n360p"));
    EXPECT_EQ(pipeline->made, 0);
}

TEST_F(ExportServiceTest, AnExistingOutputFailsWithoutOverwrite) {
    startRuntime();
    QFile existing(output("out.mp4"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("old");
    existing.close();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4"));
    EXPECT_THAT(collected->error,
                FailedWith<Error>("Output file exists: " + output("out.mp4").toStdString()));
    EXPECT_EQ(pipeline->made, 0);
    ASSERT_TRUE(existing.open(QIODevice::ReadOnly));
    EXPECT_EQ(existing.readAll(), "old");
}

TEST_F(ExportServiceTest, OverwriteReplacesAnExistingOutput) {
    startRuntime();
    QFile existing(output("out.mp4"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("old");
    existing.close();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4", {"--overwrite"}));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    ASSERT_TRUE(existing.open(QIODevice::ReadOnly));
    EXPECT_EQ(existing.size(), 500);
}

TEST_F(ExportServiceTest, SkipExistingEmitsSkippedAndExportsNothing) {
    startRuntime();
    QFile existing(output("out.mp4"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.close();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4", {"--skip-existing"}));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    ASSERT_EQ(collected->values.size(), 1u);
    EXPECT_EQ(collected->values[0],
              (nlohmann::json{
                  {"export", {{"output", output("out.mp4").toStdString()}, {"skipped", true}}}}));
    EXPECT_EQ(pipeline->made, 0);
}

TEST_F(ExportServiceTest, SkipExistingExportsAnOutputThatIsNotThere) {
    startRuntime();
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4", {"--skip-existing"}));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_EQ(collected->values.back().at("export").at("done"), true);
}

TEST_F(ExportServiceTest, AMissingOutputDirectoryFailsBeforeTheInputIsReadNamingPathAndReason) {
    startRuntime();
    const QString missing = output("missing");
    const auto collected = run({"app", "no-such-input.mp4", "--output=" + missing + "/out.mp4"});
    EXPECT_THAT(collected->error, FailedWith<Error>("Can not write to " + missing.toStdString()
                                                    + ": No such file or directory"));
    EXPECT_EQ(pipeline->made, 0);
}

TEST_F(ExportServiceTest, AnOutputDirectoryThatIsAFileFailsAsNoDirectory) {
    startRuntime();
    QFile file(output("plain"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const auto collected = run(exportOf("h264_aac.mp4", "plain/out.mp4"));
    EXPECT_THAT(collected->error,
                FailedWith<Error>("Can not write to " + output("plain").toStdString()
                                  + ": Not a directory"));
}

TEST_F(ExportServiceTest, ADisabledEncoderPluginReachesTheCallerUnchanged) {
    startRuntime();
    pipeline->failAt = 1;
    pipeline->failure = [] {
        return std::make_exception_ptr(Velmor::Core::PluginError(
            "Can not encode CODEC_ID_H264: the plug-in EncodersFF is disabled"));
    };
    const auto collected = run(exportOf("h264_aac.mp4", "out.mp4"));
    EXPECT_THAT(collected->error,
                FailedWith<Velmor::Core::PluginError>(
                    "Can not encode CODEC_ID_H264: the plug-in EncodersFF is disabled"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ExportServiceTest, AnInputThatCanNotBeReadFailsAndExportsNothing) {
    startRuntime();
    const auto collected = run(exportOf("notmedia.txt", "out.mp4"));
    EXPECT_THAT(collected->error, FailedWith<Velmor::AV::MediaError>(
                                      "Can not open media file: " + mediaFixture("notmedia.txt")
                                      + ": Invalid data found when processing input"));
    EXPECT_EQ(pipeline->made, 0);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ExportServiceTest, AnExportWaitingForItsInputWhenTheRuntimeGoesEndsCancelled) {
    startRuntime();
    holdParses();
    ASSERT_FALSE(HasFatalFailure());
    ExportService service(standIn(pipeline));
    const auto collected = collect(service.run(exportOf("h264_aac.mp4", "out.mp4")));
    // Queued behind the export's parse: the runtime's end lets go of it, and so of the hold.
    auto releaser = std::make_shared<Releaser>();
    releaser->release = [this] { releaseParses(); };
    Media::FileController::instance()->submit([releaser] {});
    releaser.reset();
    provider.reset();
    ASSERT_TRUE(spinUntil([&] { return collected->ended(); }));
    EXPECT_THAT(collected->error, FailedWith<Export::ExportCancelled>(
                                      "Export cancelled: " + output("out.mp4").toStdString()));
    EXPECT_EQ(pipeline->made, 0);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ExportServiceTest, ByDefaultExportsTakeTheirTurnsOneAtATime) {
    startRuntime(1);
    ExportService service(standIn(pipeline));
    exportEachToItsEnd(service, 3);
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_EQ(pipeline->mostRunning, 1);
    EXPECT_EQ(files().size(), 3);
}

TEST_F(ExportServiceTest, TwoRenderJobsLetTwoExportsRunAtOnceAndNoMore) {
    startRuntime(2);
    pipeline->waitForRunning = 2;
    ExportService service(standIn(pipeline));
    exportEachToItsEnd(service, 4);
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_EQ(pipeline->mostRunning, 2);
    EXPECT_EQ(files().size(), 4);
}

TEST_F(ExportServiceTest, CancelAllReachesTheExportsOfTheCurrentRuntimeAlone) {
    startRuntime();
    holdParses();
    ASSERT_FALSE(HasFatalFailure());
    ExportService service(standIn(pipeline));
    const auto collected = collect(service.run(exportOf("h264_aac.mp4", "out.mp4")));
    {
        // A runtime of its own, made after the first: its stop leaves the first's exports be.
        GlobalContextProvider other({"app"});
        ExportService::cancelAll();
    }
    EXPECT_FALSE(collected->ended());
    releaseParses();
    provider.reset();
    ASSERT_TRUE(spinUntil([&] { return collected->ended(); }));
    EXPECT_EQ(pipeline->made, 0);
}

TEST_F(ExportServiceTest, CancelAllEndsAnExportWaitingForItsInputAtOnce) {
    startRuntime();
    holdParses();
    ASSERT_FALSE(HasFatalFailure());
    ExportService service(standIn(pipeline));
    const auto collected = collect(service.run(exportOf("h264_aac.mp4", "out.mp4")));
    ExportService::cancelAll();
    EXPECT_TRUE(collected->ended());
    EXPECT_THAT(collected->error, FailedWith<Export::ExportCancelled>(
                                      "Export cancelled: " + output("out.mp4").toStdString()));
    releaseParses();
    EXPECT_EQ(pipeline->made, 0);
}
