#include "platform/editorlogic/FrameExtractor.h"

#include "platform/editorlogic/ExecutorFactory.h"
#include "platform/editorlogic/StreamProcessorFactory.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/editorlogic/TaskQueue.h"
#include "platform/editorlogic/ThumbnailTaskProvider.h"
#include "platform/engine/PluginError.h"
#include "platform/foundation/CallLog.h"
#include "platform/foundation/OutputExists.h"
#include "platform/foundation/WriteError.h"
#include "tests/host/MediaTools.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <atomic>
#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <type_traits>

using EditorService::Testing::FailedWith;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runTool;
using Velmor::Testing::CallLog;

namespace {

class QueueProvider : public Thumbnail::TaskProvider {
public:
    QueueProvider(std::vector<std::string>* done, std::vector<std::string> names) {
        for (auto& name : names)
            tasks.push_back([done, name] { done->push_back(name); });
    }
    std::function<void()> takeTask() override {
        if (tasks.empty())
            return {};
        auto task = std::move(tasks.front());
        tasks.pop_front();
        return task;
    }

    std::deque<std::function<void()>> tasks;
};

} // namespace

TEST(FrameExtractorTest, IsAThumbnailExtractor) {
    EXPECT_TRUE((std::is_base_of_v<Thumbnail::Extractor, Thumbnail::FrameExtractor>));
    EXPECT_TRUE(std::has_virtual_destructor_v<Thumbnail::Extractor>);
}

TEST(FrameExtractorTest, ProcessRunsEveryTaskProviderByProviderInOrderOfAdding) {
    std::vector<std::string> done;
    auto first = std::make_shared<QueueProvider>(&done, std::vector<std::string>{"a1", "a2"});
    auto second = std::make_shared<QueueProvider>(&done, std::vector<std::string>{"b1"});
    std::shared_ptr<Thumbnail::Extractor> extractor = std::make_shared<Thumbnail::FrameExtractor>();
    extractor->addProvider(second);
    extractor->addProvider(first);
    extractor->addProvider(second);
    extractor->process();
    const std::vector<std::string> expected{"b1", "a1", "a2"};
    EXPECT_EQ(done, expected);
}

TEST(FrameExtractorTest, ARemovedProviderIsNotAsked) {
    std::vector<std::string> done;
    auto provider = std::make_shared<QueueProvider>(&done, std::vector<std::string>{"a"});
    Thumbnail::FrameExtractor extractor;
    extractor.addProvider(provider);
    extractor.removeProvider(provider);
    extractor.process();
    EXPECT_TRUE(done.empty());
    EXPECT_EQ(provider->tasks.size(), 1u);
}

// Meant for ThreadSanitizer too: the provider list is read by one thread while another
// changes it.
TEST(FrameExtractorTest, ProvidersMayComeAndGoOnOneThreadWhileAnotherProcesses) {
    constexpr int rounds = 2000;
    Thumbnail::FrameExtractor extractor;
    auto staying = std::make_shared<Thumbnail::TaskQueue>();
    extractor.addProvider(staying);
    std::atomic<int> ran{0};
    std::thread changer([&] {
        for (int i = 0; i < rounds; ++i) {
            auto passing = std::make_shared<Thumbnail::TaskQueue>();
            passing->push([&ran] { ++ran; });
            extractor.addProvider(passing);
            staying->push([&ran] { ++ran; });
            extractor.removeProvider(passing);
        }
    });
    for (int i = 0; i < rounds; ++i)
        extractor.process();
    changer.join();
    extractor.process();
    // Every task of the provider that stayed ran; a passing one ran if process() met it.
    EXPECT_GE(ran.load(), rounds);
    EXPECT_LE(ran.load(), 2 * rounds);
    EXPECT_FALSE(staying->takeTask());
}

TEST(FrameExtractorTest, ConstructionAndDestructionAreRecorded) {
    CallLog::clear();
    { Thumbnail::FrameExtractor extractor; }
    const std::vector<std::string> expected{"Thumbnail::FrameExtractor::FrameExtractor",
                                            "Thumbnail::FrameExtractor::~FrameExtractor"};
    EXPECT_EQ(CallLog::entries(), expected);
}

namespace {

class FrameExtractionTest : public testing::Test {
protected:
    Thumbnail::Result extract(Thumbnail::Request request) {
        request.path = QString::fromStdString(EditorService::Testing::mediaFixture("noaudio.mp4"));
        request.output = output;
        return extractor.extract(request);
    }

    // The output's size as ffprobe reads it, "<width>x<height>".
    QString outputSize() const {
        const auto run = runTool(
            QStringLiteral("ffprobe"),
            {"-v", "error", "-show_entries", "stream=width,height", "-of", "csv=p=0:s=x", output});
        return QString::fromUtf8(run.output).trimmed();
    }

    // Three bytes at the output, as an earlier run might have left.
    bool writeOld() const {
        QFile old(output);
        return old.open(QIODevice::WriteOnly) && old.write("old") == 3;
    }

    QTemporaryDir directory;
    QString output = directory.filePath("thumbnail.png");
    Core::ExecutorFactory executors;
    Core::StreamProcessorFactory processors;
    Thumbnail::FrameExtractor extractor;
};

class FrameExtractionWithEngineTest : public FrameExtractionTest {
protected:
    EditorService::Testing::RunningEngine engine;
    Media::StreamProvider streams{&executors, &executors, &processors, &processors, 5000};
};

class FrameExtractionWithoutEncodersTest : public FrameExtractionTest {
protected:
    EditorService::Testing::RunningEngine engine{{"EncodersFF"}};
    Media::StreamProvider streams{&executors, &executors, &processors, &processors, 5000};
};

} // namespace

TEST_F(FrameExtractionWithEngineTest, WritesTheFrameShownAtTheTimeInItsOwnSize) {
    Thumbnail::Request request;
    request.atMilliseconds = 1500;
    const auto result = extract(request);
    EXPECT_EQ(result.frameMilliseconds, 1480);
    EXPECT_EQ(result.width, 320);
    EXPECT_EQ(result.height, 240);
    EXPECT_EQ(outputSize(), "320x240");
}

TEST_F(FrameExtractionWithEngineTest, FitsTheFrameIntoTheSizeAskedForWithBars) {
    Thumbnail::Request request;
    request.width = 160;
    request.height = 160;
    request.mode = Velmor::Proc::SettingsResizer::Fit;
    const auto result = extract(request);
    EXPECT_EQ(result.width, 160);
    EXPECT_EQ(result.height, 160);
    ASSERT_EQ(outputSize(), "160x160");
    const QByteArray pixels = rgbPixels(output);
    ASSERT_EQ(pixels.size(), 160 * 160 * 3);
    // 4:3 into a square: 120 rows of picture between bars of 20 rows.
    const auto sum = [&pixels](int row, int column) {
        const int at = (row * 160 + column) * 3;
        return quint8(pixels[at]) + quint8(pixels[at + 1]) + quint8(pixels[at + 2]);
    };
    EXPECT_EQ(sum(5, 80), 0);
    EXPECT_GT(sum(80, 80), 0);
}

TEST_F(FrameExtractionWithoutEncodersTest, NoPictureIsWritten) {
    EXPECT_THAT([&] { extract({}); },
                FailedWith<Velmor::Core::PluginError>(
                    "Can not encode CODEC_ID_PNG: the plug-in EncodersFF is disabled"));
    EXPECT_FALSE(QFile::exists(output));
}

TEST_F(FrameExtractionTest, WithoutAStreamProviderExtractionIsALogicError) {
    const EditorService::Testing::RunningEngine engine;
    EXPECT_THAT([&] { extract({}); }, FailedWith<std::logic_error>(
                                          "Can not extract a thumbnail: no stream provider runs"));
}

TEST_F(FrameExtractionWithEngineTest, AMissingFolderFailsBeforeTheInputIsRead) {
    Thumbnail::Request request;
    request.path = directory.filePath("no-such-input.mp4");
    request.output = directory.filePath("missing/thumbnail.png");
    EXPECT_THAT([&] { extractor.extract(request); },
                FailedWith<Velmor::WriteError>("Can not write " + request.output.toStdString()
                                               + ": No such file or directory"));
}

TEST_F(FrameExtractionWithEngineTest, AnExistingOutputIsKeptAndNoTemporaryStays) {
    ASSERT_TRUE(writeOld());
    EXPECT_THAT([&] { extract({}); },
                FailedWith<Velmor::OutputExists>("Output file exists: " + output.toStdString()));
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files), QStringList{"thumbnail.png"});
    EXPECT_EQ(QFileInfo(output).size(), 3);
}

TEST_F(FrameExtractionWithEngineTest, AnExistingOutputIsReplacedWhenTheRequestOverwrites) {
    ASSERT_TRUE(writeOld());
    Thumbnail::Request request;
    request.overwrite = true;
    extract(request);
    EXPECT_EQ(outputSize(), "320x240");
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files), QStringList{"thumbnail.png"});
}
