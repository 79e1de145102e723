#include "media/ProgressPacer.h"

#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>
#include <mutex>

using EditorService::ProgressPacer;
using EditorService::Testing::spinUntil;
using namespace std::chrono_literals;

TEST(ProgressPacerTest, NewsIsDueAHundredMillisecondsAfterTheLastValue) {
    const ProgressPacer::Clock::time_point last{10s};
    EXPECT_EQ(ProgressPacer::due(last, true), last + 100ms);
}

TEST(ProgressPacerTest, WithoutNewsTheSameValueIsDueAgainWellWithinHalfASecond) {
    const ProgressPacer::Clock::time_point last{10s};
    EXPECT_EQ(ProgressPacer::due(last, false), last + 400ms);
    EXPECT_LT(ProgressPacer::maximumGap, 500ms);
}

TEST(ProgressPacerTest, AQuietExportGetsItsLastProgressRepeated) {
    std::mutex mutex;
    std::vector<std::int64_t> frames;
    ProgressPacer pacer([&](const Export::ExportProgress& progress) {
        std::lock_guard<std::mutex> lock(mutex);
        frames.push_back(progress.frames);
    });
    Export::ExportProgress progress;
    progress.frames = 7;
    progress.progress = 0.5;
    pacer.update(progress);
    ASSERT_TRUE(spinUntil([&] {
        std::lock_guard<std::mutex> lock(mutex);
        return frames.size() >= 3;
    }));
    pacer.stop();
    std::lock_guard<std::mutex> lock(mutex);
    for (const auto value : frames)
        EXPECT_EQ(value, 7);
}

TEST(ProgressPacerTest, ManyUpdatesBetweenTwoValuesGiveTheLatest) {
    std::mutex mutex;
    std::vector<std::int64_t> frames;
    ProgressPacer pacer([&](const Export::ExportProgress& progress) {
        std::lock_guard<std::mutex> lock(mutex);
        frames.push_back(progress.frames);
    });
    {
        // Held while updating, so that no value goes out in between.
        std::lock_guard<std::mutex> lock(mutex);
        for (int frame = 1; frame <= 50; ++frame) {
            Export::ExportProgress progress;
            progress.frames = frame;
            pacer.update(progress);
        }
    }
    ASSERT_TRUE(spinUntil([&] {
        std::lock_guard<std::mutex> lock(mutex);
        return !frames.empty() && frames.back() == 50;
    }));
    pacer.stop();
}

TEST(ProgressPacerTest, AfterStopNothingMoreIsEmitted) {
    std::mutex mutex;
    int emitted = 0;
    ProgressPacer pacer([&](const Export::ExportProgress&) {
        std::lock_guard<std::mutex> lock(mutex);
        ++emitted;
    });
    pacer.update({});
    pacer.stop();
    int atStop = 0;
    {
        std::lock_guard<std::mutex> lock(mutex);
        atStop = emitted;
    }
    EditorService::Testing::spinFor(600ms);
    std::lock_guard<std::mutex> lock(mutex);
    EXPECT_EQ(emitted, atStop);
}
