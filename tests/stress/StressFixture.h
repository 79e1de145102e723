#pragma once

#include "service/api/Error.h"
#include "service/api/ServiceLoader.h"
#include "service/launcher/CLILauncher.h"
#include "tests/stress/StressService.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <atomic>
#include <glog/logging.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <string>
#include <vector>

namespace EditorService::Testing {

// What a stream delivered, from whichever threads it delivered it.
struct Outcome {
    std::mutex mutex;
    std::vector<nlohmann::json> values;
    std::exception_ptr error;
    std::atomic<int> ends{0};
    std::atomic<long> valueCount{0};
    std::atomic<bool> valueAfterEnd{false};

    bool ended() const { return ends.load() > 0; }
};

// An allocator that says when the memory it gave is given back. A std::shared_ptr made with it
// frees its control block only when the last std::weak_ptr to the object has gone too, so a
// test can see that nothing holds even a weak reference any more.
template <class T> struct TrackingAllocator {
    using value_type = T;

    explicit TrackingAllocator(std::shared_ptr<std::atomic<int>> live)
        : live(std::move(live)) {}
    template <class U>
    TrackingAllocator(const TrackingAllocator<U>& other)
        : live(other.live) {}

    T* allocate(std::size_t count) {
        ++*live;
        return std::allocator<T>().allocate(count);
    }
    void deallocate(T* pointer, std::size_t count) {
        --*live;
        std::allocator<T>().deallocate(pointer, count);
    }

    template <class U> bool operator==(const TrackingAllocator<U>& other) const {
        return live == other.live;
    }
    template <class U> bool operator!=(const TrackingAllocator<U>& other) const {
        return live != other.live;
    }

    std::shared_ptr<std::atomic<int>> live;
};

// A CLILauncher for the command lists' program path, a loader of the stress services, and a
// scratch folder for scripts; the command log is kept quiet, since big scripts log every line.
class StressFixture : public testing::Test {
protected:
    void SetUp() override {
        logLevel = FLAGS_minloglevel;
        FLAGS_minloglevel = google::GLOG_WARNING;
        registerStressServices(*loader, probe);
    }

    void TearDown() override { FLAGS_minloglevel = logLevel; }

    QString writeScript(const QByteArray& content) {
        const QString path =
            directory.filePath(QStringLiteral("script%1.reel").arg(++scriptsWritten));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return path;
    }

    // Subscribes, keeping everything; with `keepValues` false only counts them.
    static std::shared_ptr<Outcome> observe(const rxcpp::observable<nlohmann::json>& stream,
                                            rxcpp::composite_subscription lifetime = {},
                                            bool keepValues = true) {
        auto outcome = std::make_shared<Outcome>();
        stream.subscribe(
            lifetime,
            [outcome, keepValues](const nlohmann::json& value) {
                if (outcome->ended())
                    outcome->valueAfterEnd = true;
                ++outcome->valueCount;
                if (!keepValues)
                    return;
                std::lock_guard<std::mutex> lock(outcome->mutex);
                outcome->values.push_back(value);
            },
            [outcome](std::exception_ptr error) {
                {
                    std::lock_guard<std::mutex> lock(outcome->mutex);
                    outcome->error = error;
                }
                ++outcome->ends;
            },
            [outcome] { ++outcome->ends; });
        return outcome;
    }

    static std::shared_ptr<Outcome> observeToEnd(const rxcpp::observable<nlohmann::json>& stream) {
        auto outcome = observe(stream);
        EXPECT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
        return outcome;
    }

    // Runs the main thread's event loop until done() holds or the limit has passed, without
    // sleeping between events, so that a big run measures the library rather than the wait.
    static bool runLoopUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
        QEventLoop loop;
        QTimer check;
        QElapsedTimer clock;
        clock.start();
        QObject::connect(&check, &QTimer::timeout, &loop, [&] {
            if (done() || clock.elapsed() > limit.count())
                loop.quit();
        });
        check.start(1);
        if (!done())
            loop.exec();
        return done();
    }

    static QString applicationPath() {
        return CLILauncher::instance()->commandLineArguments().first();
    }

    CLILauncher launcher;
    std::shared_ptr<StressProbe> probe = std::make_shared<StressProbe>();
    std::shared_ptr<ServiceLoader> loader = std::make_shared<ServiceLoader>();

private:
    QTemporaryDir directory;
    int scriptsWritten = 0;
    int logLevel = 0;
};

} // namespace EditorService::Testing
