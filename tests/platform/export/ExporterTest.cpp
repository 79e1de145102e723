#include "platform/export/Exporter.h"

#include "platform/av/MediaError.h"
#include "platform/engine/CoreManager.h"
#include "platform/engine/CoreManagerOptions.h"
#include "platform/engine/PluginError.h"
#include "platform/engine/Utils.h"
#include "platform/export/PresetProvider.h"
#include "platform/foundation/OutputExists.h"
#include "platform/foundation/WriteError.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::mediaFixture;
using Export::ExportCancelled;
using Export::Exporter;
using Export::ExportProgress;
using Export::ExportResult;
using Export::ExportSettings;
using Velmor::OutputExists;
using Velmor::WriteError;
using Velmor::AV::MediaError;
using Velmor::Core::CoreManager;

namespace {

Preset preset(const std::string& id) {
    Export::PresetProvider provider;
    provider.load();
    provider.selectTag("format_clive");
    provider.selectPreset(id);
    Preset selected = provider.preset();
    EXPECT_EQ(selected.id(), id);
    return selected;
}

std::string run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(120000)) << program.toStdString();
    return process.readAll().toStdString();
}

// What ffprobe, a reader independent of ours, reads of a file.
nlohmann::json probe(const std::string& path) {
    return nlohmann::json::parse(
        run("ffprobe", {"-v", "error", "-show_format", "-show_streams", "-count_packets", "-of",
                        "json", QString::fromStdString(path)}));
}

const nlohmann::json* stream(const nlohmann::json& probed, const std::string& type) {
    for (const auto& each : probed["streams"]) {
        if (each["codec_type"] == type)
            return &each;
    }
    return nullptr;
}

double number(const nlohmann::json& value) {
    return std::stod(value.get<std::string>());
}

// The luma of the first picture of a file as ffmpeg decodes it, row by row, in full range:
// black is 0.
std::vector<unsigned char> firstLuma(const std::string& path) {
    QProcess process;
    process.start("ffmpeg", {"-v", "error", "-i", QString::fromStdString(path), "-frames:v", "1",
                             "-f", "rawvideo", "-pix_fmt", "gray", "-"});
    EXPECT_TRUE(process.waitForFinished(60000));
    const QByteArray bytes = process.readAllStandardOutput();
    return {bytes.begin(), bytes.end()};
}

double meanLuma(const std::vector<unsigned char>& luma, int width, int fromX, int toX) {
    const int height = static_cast<int>(luma.size()) / width;
    double sum = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = fromX; x < toX; ++x)
            sum += luma[y * width + x];
    }
    return sum / (height * (toX - fromX));
}

int maxLuma(const std::vector<unsigned char>& luma, int width, int fromX, int toX) {
    const int height = static_cast<int>(luma.size()) / width;
    int most = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = fromX; x < toX; ++x)
            most = std::max<int>(most, luma[y * width + x]);
    }
    return most;
}

bool exists(const std::string& path) {
    return std::filesystem::exists(path);
}

// The names in a folder, sorted.
std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

bool holdsATemporary(const std::string& folder) {
    const auto names = namesIn(folder);
    return std::any_of(names.begin(), names.end(), [](const std::string& name) {
        return name.find(".reelsmith-partial-") != std::string::npos;
    });
}

Velmor::Core::ModuleOptionTable disabling(const std::vector<std::string>& plugins) {
    Velmor::Core::ModuleOptionTable table;
    Velmor::Core::Utils::SetModuleOption(
        table, Velmor::Core::CoreManagerOptions::MODULE_PLUGIN_LOADER,
        Velmor::Core::CoreManagerOptions::OPT_DISABLED_PLUGINS, plugins);
    return table;
}

// In a child process: exports with files limited to 64 KiB, the signal that the limit raises
// ignored so that writes fail instead. Exits 0 when the export failed with the system's reason
// and left no file.
[[noreturn]] void exportUnderFileSizeLimit(const ExportSettings& settings) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{64 * 1024, 64 * 1024};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    Exporter exporter(settings);
    try {
        exporter.run({});
        std::fprintf(stderr, "no exception\n");
        std::_Exit(1);
    } catch (const MediaError& error) {
        const std::string expected = "Can not write " + settings.output + ": File too large";
        std::fprintf(stderr, "%s\n", error.what());
        const bool left =
            !std::filesystem::is_empty(std::filesystem::path(settings.output).parent_path());
        std::_Exit(error.what() == expected && !left ? 0 : 2);
    }
}

} // namespace

class ExporterTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(directory.isValid());
        startEngine({});
    }
    void TearDown() override { CoreManager::Instance().Uninitialize(); }

    static void startEngine(const std::vector<std::string>& disabled) {
        auto& core = CoreManager::Instance();
        core.Uninitialize();
        core.Initialize({}, disabling(disabled), {});
        core.WaitUntilInitialized();
    }

    std::string output(const std::string& name = "out.mp4") const {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }

    ExportSettings settings(const std::string& input, const Preset& chosen,
                            Types::Range range = {}) const {
        return ExportSettings{mediaFixture(input), output(), chosen, range};
    }

    // Nothing at the output path and no temporary beside it.
    void expectNoFiles() const {
        EXPECT_FALSE(exists(output()));
        EXPECT_TRUE(std::filesystem::is_empty(directory.path().toStdString()));
    }

    QTemporaryDir directory;
};

TEST_F(ExporterTest, A720pExportIsAnMp4OfH264AndAacThatFfprobeReads) {
    Exporter exporter(settings("h264_aac.mp4", preset("720p")));
    const ExportResult result = exporter.run({});

    const nlohmann::json probed = probe(output());
    EXPECT_NE(probed["format"]["format_name"].get<std::string>().find("mp4"), std::string::npos);
    const auto* video = stream(probed, "video");
    const auto* audio = stream(probed, "audio");
    ASSERT_TRUE(video && audio);
    EXPECT_EQ((*video)["codec_name"], "h264");
    EXPECT_EQ((*video)["width"], 1280);
    EXPECT_EQ((*video)["height"], 720);
    EXPECT_EQ((*video)["pix_fmt"], "yuv420p");
    EXPECT_EQ((*audio)["codec_name"], "aac");
    EXPECT_EQ((*audio)["sample_rate"], "44100");
    EXPECT_EQ((*audio)["channels"], 2);
    EXPECT_NEAR(number(probed["format"]["duration"]), 2.0, 0.04);

    EXPECT_EQ(result.frames, 50);
    EXPECT_NEAR(static_cast<double>(result.durationMs), 2000, 40);
    EXPECT_EQ(result.bytes, static_cast<std::int64_t>(std::filesystem::file_size(output())));
    EXPECT_EQ(result.video->codec, "h264");
    EXPECT_EQ(result.video->width, 1280);
    EXPECT_EQ(result.video->height, 720);
    EXPECT_GT(result.video->bitRate, 0);
    ASSERT_TRUE(result.audio);
    EXPECT_EQ(result.audio->codec, "aac");
    EXPECT_EQ(result.audio->sampleRate, 44100);
    EXPECT_EQ(result.audio->channels, 2);
    EXPECT_GT(result.audio->bitRate, 0);
    EXPECT_EQ(namesIn(directory.path().toStdString()), std::vector<std::string>{"out.mp4"});
}

TEST_F(ExporterTest, TheIndexIsAtTheFrontOfTheFile) {
    Exporter(settings("h264_aac.mp4", preset("360p"))).run({});
    const std::string trace = run("ffprobe", {"-v", "trace", QString::fromStdString(output())});
    const auto moov = trace.find("type:'moov'");
    const auto mdat = trace.find("type:'mdat'");
    ASSERT_NE(moov, std::string::npos);
    ASSERT_NE(mdat, std::string::npos);
    EXPECT_LT(moov, mdat);
}

TEST_F(ExporterTest, FrameRateAndTimestampsAreKeptFromZero) {
    Exporter(settings("clip.mov", preset("mp4"))).run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    const auto* audio = stream(probed, "audio");
    ASSERT_TRUE(video && audio);
    EXPECT_EQ((*video)["r_frame_rate"], "30/1");
    EXPECT_EQ((*video)["avg_frame_rate"], "30/1");
    EXPECT_EQ((*video)["nb_read_packets"], "60");
    EXPECT_DOUBLE_EQ(number((*video)["start_time"]), 0.0);
    EXPECT_DOUBLE_EQ(number((*audio)["start_time"]), 0.0);
    // In sync: both streams as long as each other within one frame.
    EXPECT_NEAR(number((*video)["duration"]), number((*audio)["duration"]), 1.0 / 30);
}

TEST_F(ExporterTest, TheFreeResolutionPresetTakesTheInputsSize) {
    const ExportResult result = Exporter(settings("portrait.mp4", preset("mp4"))).run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    ASSERT_TRUE(video);
    EXPECT_EQ((*video)["width"], 180);
    EXPECT_EQ((*video)["height"], 320);
    EXPECT_EQ(result.video->width, 180);
    EXPECT_EQ(result.video->height, 320);
}

TEST_F(ExporterTest, TheHevcCodecOfThePresetIsEncodedByLibx265) {
    Preset chosen = preset("mp4");
    ASSERT_TRUE(chosen.selectVideoCodec("CODEC_ID_HEVC"));
    const ExportResult result = Exporter(settings("h264_aac.mp4", chosen)).run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    ASSERT_TRUE(video);
    EXPECT_EQ((*video)["codec_name"], "hevc");
    EXPECT_EQ(result.video->codec, "hevc");
}

TEST_F(ExporterTest, TheBitrateModeAveragesTheGivenRateWithinTenPercentOnATenSecondClip) {
    Preset chosen = preset("mp4");
    ASSERT_TRUE(chosen.setVideoBitrateMode(Export::BitrateMode::Bps));
    ASSERT_TRUE(chosen.setVideoBitrateBps(400000));
    const ExportResult result = Exporter(settings("ten_seconds.mp4", chosen)).run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    ASSERT_TRUE(video);
    EXPECT_NEAR(number((*video)["bit_rate"]), 400000, 40000);
    EXPECT_NEAR(static_cast<double>(result.video->bitRate), 400000, 40000);
}

TEST_F(ExporterTest, TheAutoModeCapsTheQualityLedRateAtThePresetsRate) {
    Preset chosen = preset("mp4");
    ASSERT_TRUE(chosen.setVideoBitrateMode(Export::BitrateMode::Auto));
    ASSERT_TRUE(chosen.setVideoBitrateBps(150000));
    Exporter(settings("ten_seconds.mp4", chosen)).run({});
    const nlohmann::json probed = probe(output());
    const auto* capped = stream(probed, "video");
    ASSERT_TRUE(capped);
    // The capped rate, with the rate buffer's slack.
    EXPECT_LT(number((*capped)["bit_rate"]), 150000 * 1.1);
}

TEST_F(ExporterTest, A720pExportAtThePresetsDefaultRatesKeepsAPsnrOfAtLeast35Db) {
    Exporter(settings("hd_720p.mp4", preset("720p"))).run({});
    const std::string text =
        run("ffmpeg", {"-v", "info", "-nostdin", "-i", QString::fromStdString(output()), "-i",
                       QString::fromStdString(mediaFixture("hd_720p.mp4")), "-lavfi",
                       "[0:v][1:v]psnr", "-f", "null", "-"});
    const auto at = text.find("average:");
    ASSERT_NE(at, std::string::npos) << text;
    EXPECT_GE(std::stod(text.substr(at + 8)), 35.0) << text.substr(at, 40);
}

TEST_F(ExporterTest, FitPutsBlackBarsBesideAPortraitPicture) {
    // 180x320 fitted into 640x360: a picture 202 wide in the middle, bars of 219 each side.
    Exporter(settings("portrait.mp4", preset("360p"))).run({});
    const std::vector<unsigned char> luma = firstLuma(output());
    ASSERT_EQ(luma.size(), 640u * 360u);
    EXPECT_LE(meanLuma(luma, 640, 0, 210), 2);
    EXPECT_LE(maxLuma(luma, 640, 0, 210), 8);
    EXPECT_LE(meanLuma(luma, 640, 430, 640), 2);
    EXPECT_LE(maxLuma(luma, 640, 430, 640), 8);
    EXPECT_GT(meanLuma(luma, 640, 230, 410), 40);
}

TEST_F(ExporterTest, FillCoversTheWholePictureWithoutBars) {
    Preset chosen = preset("360p");
    ASSERT_TRUE(chosen.setResizeFillMode(Velmor::Proc::SettingsResizer::Fill));
    Exporter(settings("portrait.mp4", chosen)).run({});
    const std::vector<unsigned char> luma = firstLuma(output());
    ASSERT_EQ(luma.size(), 640u * 360u);
    EXPECT_GT(maxLuma(luma, 640, 0, 8), 40);
    EXPECT_GT(maxLuma(luma, 640, 632, 640), 40);
}

// libx265 given fewer frames than it reorders over gave, now and then, decoding times that the
// muxer refused ("pts/dts pair unsupported"); repeated, since it came at random.
TEST_F(ExporterTest, HevcExportsOfOneAndTwoFramesAlwaysComplete) {
    Preset chosen = preset("360p");
    ASSERT_TRUE(chosen.selectVideoCodec("CODEC_ID_HEVC"));
    for (int attempt = 0; attempt < 6; ++attempt) {
        for (int frames = 1; frames <= 2; ++frames) {
            ExportSettings one = settings("h264_aac.mp4", chosen, Types::Range(0, 40 * frames));
            one.output =
                output("hevc-" + std::to_string(attempt) + "-" + std::to_string(frames) + ".mp4");
            EXPECT_NO_THROW(Exporter(one).run({})) << attempt << " " << frames;
            const nlohmann::json probed = probe(one.output);
            const auto* video = stream(probed, "video");
            ASSERT_TRUE(video) << attempt << " " << frames;
            EXPECT_EQ((*video)["nb_read_packets"], std::to_string(frames));
        }
    }
}

TEST_F(ExporterTest, ARangeStartsAtItsFirstFrameFromZeroAndLastsItsLength) {
    Exporter exporter(settings("h264_aac.mp4", preset("mp4"), Types::Range(500, 1500)));
    const ExportResult result = exporter.run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    const auto* audio = stream(probed, "audio");
    ASSERT_TRUE(video && audio);
    EXPECT_EQ((*video)["nb_read_packets"], "25");
    EXPECT_DOUBLE_EQ(number((*video)["start_time"]), 0.0);
    EXPECT_DOUBLE_EQ(number((*audio)["start_time"]), 0.0);
    EXPECT_NEAR(number(probed["format"]["duration"]), 1.0, 0.04);
    EXPECT_NEAR(number((*audio)["duration"]), 1.0, 0.04);
    EXPECT_NEAR(static_cast<double>(result.durationMs), 1000, 40);
    EXPECT_EQ(result.frames, 25);
}

TEST_F(ExporterTest, ARangeOutsideTheInputFailsNamingBothAndLeavesNoFile) {
    Exporter exporter(settings("h264_aac.mp4", preset("mp4"), Types::Range(5000, 9000)));
    EXPECT_THAT([&] { exporter.run({}); },
                FailedWith<MediaError>("Range 5000:9000 ms is outside "
                                       + mediaFixture("h264_aac.mp4") + " (2000 ms)"));
    expectNoFiles();
}

TEST_F(ExporterTest, AnInputWithoutAudioGivesAnOutputWithoutAudio) {
    const ExportResult result = Exporter(settings("noaudio.mp4", preset("mp4"))).run({});
    const nlohmann::json probed = probe(output());
    EXPECT_TRUE(stream(probed, "video"));
    EXPECT_FALSE(stream(probed, "audio"));
    EXPECT_FALSE(result.audio);
    EXPECT_EQ(result.frames, 50);
}

TEST_F(ExporterTest, SoundAloneGivesAnAacOnlyOutput) {
    const ExportResult result = Exporter(settings("cover_art.mp3", preset("mp4"))).run({});
    const nlohmann::json probed = probe(output());
    EXPECT_FALSE(stream(probed, "video"));
    const auto* audio = stream(probed, "audio");
    ASSERT_TRUE(audio);
    EXPECT_EQ((*audio)["codec_name"], "aac");
    EXPECT_FALSE(result.video);
    ASSERT_TRUE(result.audio);
    EXPECT_EQ(result.audio->codec, "aac");
}

TEST_F(ExporterTest, ARotatedInputIsWrittenUprightWithNoRotationLeft) {
    const ExportResult result = Exporter(settings("rotate90.mp4", preset("mp4"))).run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    ASSERT_TRUE(video);
    EXPECT_EQ((*video)["width"], 90);
    EXPECT_EQ((*video)["height"], 160);
    EXPECT_FALSE(video->contains("side_data_list"));
    EXPECT_EQ(result.video->width, 90);
}

TEST_F(ExporterTest, AnAnamorphicInputIsWrittenInSquarePixelsAtItsDisplaySize) {
    Exporter(settings("sar_64_45.mp4", preset("mp4"))).run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    ASSERT_TRUE(video);
    EXPECT_EQ((*video)["width"], 256);
    EXPECT_EQ((*video)["height"], 144);
}

TEST_F(ExporterTest, ARangeOfATransportStreamWithOpenGopsKeepsItsFirstFrames) {
    // Its timestamps start at 1.4 s, its key frames a second apart, after B-frames they lead.
    Exporter exporter(settings("open_gop.ts", preset("mp4"), Types::Range(500, 1500)));
    const ExportResult result = exporter.run({});
    const nlohmann::json probed = probe(output());
    const auto* video = stream(probed, "video");
    ASSERT_TRUE(video);
    EXPECT_EQ((*video)["nb_read_packets"], "25");
    EXPECT_EQ(result.frames, 25);
}

TEST_F(ExporterTest, ProgressFollowsEachEncodedFrameUpToTheWhole) {
    std::vector<ExportProgress> values;
    Exporter(settings("h264_aac.mp4", preset("mp4"))).run([&](const ExportProgress& value) {
        values.push_back(value);
    });
    ASSERT_EQ(values.size(), 50u);
    for (std::size_t index = 0; index < values.size(); ++index) {
        EXPECT_EQ(values[index].frames, static_cast<std::int64_t>(index + 1));
        EXPECT_GE(values[index].progress, 0.0);
        EXPECT_LE(values[index].progress, 1.0);
        EXPECT_GE(values[index].fps, 0.0);
    }
    EXPECT_DOUBLE_EQ(values.back().progress, 1.0);
}

TEST_F(ExporterTest, AMissingOutputDirectoryFailsBeforeTheInputIsRead) {
    const std::string missing = output("missing/out.mp4");
    // The input does not exist either: the output's failure comes first.
    Exporter exporter(
        ExportSettings{mediaFixture("no-such-input.mp4"), missing, preset("mp4"), {}});
    EXPECT_THAT([&] { exporter.run({}); },
                FailedWith<WriteError>("Can not write " + missing + ": No such file or directory"));
    expectNoFiles();
}

TEST_F(ExporterTest, AnOutputDirectoryThatIsNotWritableFailsWithTheSystemsReason) {
    // Root writes anywhere chmod forbids; nobody creates files in /sys.
    std::string unwritable = "/sys";
    if (::geteuid() != 0) {
        unwritable = output("locked");
        ASSERT_EQ(::mkdir(unwritable.c_str(), 0555), 0);
    }
    const std::string target = unwritable + "/out.mp4";
    Exporter exporter(ExportSettings{mediaFixture("h264_aac.mp4"), target, preset("mp4"), {}});
    EXPECT_THAT([&] { exporter.run({}); },
                FailedWith<WriteError>("Can not write " + target + ": Permission denied"));
    EXPECT_FALSE(exists(target));
}

TEST_F(ExporterTest, AnUnreadableInputFailsAndLeavesNoFile) {
    Exporter exporter(settings("truncated.mp4", preset("mp4")));
    EXPECT_THAT([&] { exporter.run({}); },
                FailedWith<MediaError>("Can not open media file: " + mediaFixture("truncated.mp4")
                                       + ": Invalid data found when processing input"));
    expectNoFiles();
}

TEST_F(ExporterTest, AFileSizeLimitMidwayFailsWithTheSystemsReasonAndLeavesNoFile) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    Preset chosen = preset("mp4");
    ASSERT_TRUE(chosen.setVideoBitrateMode(Export::BitrateMode::Bps));
    ASSERT_TRUE(chosen.setVideoBitrateBps(1000000));
    const ExportSettings limited = settings("ten_seconds.mp4", chosen);
    EXPECT_EXIT(exportUnderFileSizeLimit(limited), testing::ExitedWithCode(0), "File too large");
    EXPECT_TRUE(std::filesystem::is_empty(directory.path().toStdString()));
}

TEST_F(ExporterTest, CancelFromAnotherThreadEndsTheExportAndLeavesNoFile) {
    Exporter exporter(settings("ten_seconds.mp4", preset("mp4")));
    std::mutex mutex;
    std::condition_variable started;
    bool progressed = false;
    std::int64_t frames = 0;
    std::thread canceller([&] {
        std::unique_lock<std::mutex> lock(mutex);
        started.wait(lock, [&] { return progressed; });
        exporter.cancel();
    });
    EXPECT_THAT(
        [&] {
            exporter.run([&](const ExportProgress& value) {
                std::lock_guard<std::mutex> lock(mutex);
                frames = value.frames;
                progressed = true;
                started.notify_all();
            });
        },
        FailedWith<ExportCancelled>("Export cancelled: " + output()));
    canceller.join();
    EXPECT_LT(frames, 250);
    expectNoFiles();
}

TEST_F(ExporterTest, CancelGivesUpAReadOfAFifoThatNeverDelivers) {
    const std::string fifo = output("stalled.mp4");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    // A writer that never writes: reads wait for data rather than end.
    const int writer = ::open(fifo.c_str(), O_RDWR);
    ASSERT_GE(writer, 0);
    const std::string target = output("stalled-out.mp4");
    Exporter exporter(ExportSettings{fifo, target, preset("mp4"), {}});
    std::exception_ptr failure;
    std::atomic<bool> ended{false};
    std::thread running([&] {
        failure = failureOf([&] { exporter.run({}); });
        ended = true;
    });
    // The temporary appears just before the input is opened.
    while (!holdsATemporary(directory.path().toStdString()) && !ended)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    exporter.cancel();
    running.join();
    ::close(writer);
    EXPECT_THAT(failure, FailedWith<ExportCancelled>("Export cancelled: " + target));
    EXPECT_EQ(namesIn(directory.path().toStdString()), std::vector<std::string>{"stalled.mp4"});
}

TEST_F(ExporterTest, ADisabledEncoderPluginFailsWithTheEnginesMessageAndWritesNothing) {
    startEngine({"EncodersFF"});
    Exporter exporter(settings("h264_aac.mp4", preset("mp4")));
    EXPECT_THAT([&] { exporter.run({}); },
                FailedWith<Velmor::Core::PluginError>(
                    "Can not encode CODEC_ID_H264: the plug-in EncodersFF is disabled"));
    expectNoFiles();
}

TEST_F(ExporterTest, AnOutputThatAppearsWhileTheExportRunsIsKept) {
    ExportSettings chosen = settings("h264_aac.mp4", preset("mp4"));
    bool planted = false;
    EXPECT_THAT(
        [&] {
            Exporter(chosen).run([&](const ExportProgress&) {
                if (std::exchange(planted, true))
                    return;
                std::FILE* other = std::fopen(output().c_str(), "wb");
                std::fputs("another's", other);
                std::fclose(other);
            });
        },
        FailedWith<OutputExists>("Output file exists: " + output()));
    EXPECT_EQ(namesIn(directory.path().toStdString()), std::vector<std::string>{"out.mp4"});
    EXPECT_EQ(std::filesystem::file_size(output()), 9u);
}

TEST_F(ExporterTest, AnOutputThatAppearsWhileTheExportRunsIsReplacedWhenAskedTo) {
    ExportSettings chosen = settings("h264_aac.mp4", preset("mp4"));
    chosen.overwrite = true;
    bool planted = false;
    const ExportResult result = Exporter(chosen).run([&](const ExportProgress&) {
        if (std::exchange(planted, true))
            return;
        std::FILE* other = std::fopen(output().c_str(), "wb");
        std::fputs("another's", other);
        std::fclose(other);
    });
    EXPECT_EQ(result.bytes, static_cast<std::int64_t>(std::filesystem::file_size(output())));
    EXPECT_EQ(probe(output())["streams"].size(), 2u);
}
