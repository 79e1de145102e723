#include "platform/editorlogic/TaskController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <stdexcept>
#include <thread>

using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

constexpr auto generously = std::chrono::seconds(60);

// What a controller signals, and what its tasks note, in order, with the thread of each.
class EventLog {
public:
    explicit EventLog(Task::Controller& controller) {
        QObject::connect(
            &controller, &Task::Controller::isBusy, &controller, [this] { note("isBusy"); },
            Qt::DirectConnection);
        QObject::connect(
            &controller, &Task::Controller::isIdle, &controller,
            [this] {
                note("isIdle");
                idle.set_value();
            },
            Qt::DirectConnection);
    }

    void note(const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
        threads.push_back(std::this_thread::get_id());
    }

    bool waitForIdle() {
        return idle.get_future().wait_for(generously) == std::future_status::ready;
    }

    std::mutex mutex;
    std::vector<std::string> events;
    std::vector<std::thread::id> threads;

private:
    std::promise<void> idle;
};

} // namespace

class TaskControllerTest : public testing::Test {
protected:
    void SetUp() override {
        Probe::clear();
        CallLog::clear();
    }
};

TEST_F(TaskControllerTest, SignalsBusyAndIdleFromItsOwnThreadAroundTheWork) {
    Task::Controller controller;
    EventLog log(controller);
    controller.submit([&] { log.note("task"); });
    ASSERT_TRUE(log.waitForIdle());
    std::lock_guard<std::mutex> lock(log.mutex);
    const std::vector<std::string> expected{"isBusy", "task", "isIdle"};
    EXPECT_EQ(log.events, expected);
    for (const auto& thread : log.threads)
        EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(TaskControllerTest, InstanceIsTheLastControllerStillAlive) {
    EXPECT_EQ(Task::Controller::instance(), nullptr);
    {
        Task::Controller first;
        EXPECT_EQ(Task::Controller::instance(), &first);
        {
            Task::Controller second;
            EXPECT_EQ(Task::Controller::instance(), &second);
        }
        EXPECT_EQ(Task::Controller::instance(), nullptr);
    }
    EXPECT_EQ(Task::Controller::instance(), nullptr);
}

TEST_F(TaskControllerTest, ConstructionAndDestructionAreRecorded) {
    { Task::Controller controller; }
    const std::vector<std::string> expected{"Task::Controller::Controller",
                                            "Task::Controller::~Controller"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(TaskControllerTest, AnInjectedFailureLeavesTheConstructor) {
    Probe::failNext("Task::Controller::Controller");
    EXPECT_THAT([&] { Task::Controller controller; },
                FailedWith<std::runtime_error>("Injected failure at Task::Controller::Controller"));
    EXPECT_TRUE(CallLog::entries().empty());
    EXPECT_EQ(Task::Controller::instance(), nullptr);
}

TEST_F(TaskControllerTest, ConcurrentTasksRunSideBySideWithTheSerialOneUnderOneBusyAndIdle) {
    std::promise<void> release;
    auto released = release.get_future().share();
    std::promise<void> allStarted;
    int started = 0;
    Task::Controller controller;
    EventLog log(controller);
    auto start = [&] {
        std::lock_guard<std::mutex> lock(log.mutex);
        if (++started == 3)
            allStarted.set_value();
    };
    // Three tasks that wait for each other: they end only when all three run at once.
    controller.submit([&, released] {
        start();
        released.wait();
    });
    controller.submitConcurrent([&, released] {
        start();
        released.wait();
    });
    controller.submitConcurrent([&, released] {
        start();
        released.wait();
    });
    ASSERT_EQ(allStarted.get_future().wait_for(generously), std::future_status::ready);
    release.set_value();
    ASSERT_TRUE(log.waitForIdle());
    std::lock_guard<std::mutex> lock(log.mutex);
    const std::vector<std::string> expected{"isBusy", "isIdle"};
    EXPECT_EQ(log.events, expected);
}

TEST_F(TaskControllerTest, AConcurrentTaskAloneSignalsBusyAndIdleAroundIt) {
    Task::Controller controller;
    EventLog log(controller);
    controller.submitConcurrent([&] { log.note("task"); });
    ASSERT_TRUE(log.waitForIdle());
    std::lock_guard<std::mutex> lock(log.mutex);
    const std::vector<std::string> expected{"isBusy", "task", "isIdle"};
    EXPECT_EQ(log.events, expected);
}

TEST_F(TaskControllerTest, ATaskStillQueuedWhenTheControllerGoesIsDroppedAfterTheRunningOne) {
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    std::vector<std::string> events;
    std::thread::id droppedOn;
    std::thread releaser;
    {
        Task::Controller controller;
        controller.submit([&, released] {
            started.set_value();
            released.wait();
            events.push_back("running ended");
        });
        controller.submit([&] { events.push_back("queued ran"); },
                          [&] {
                              events.push_back("queued dropped");
                              droppedOn = std::this_thread::get_id();
                          });
        ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
        releaser = std::thread([&release] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            release.set_value();
        });
    }
    releaser.join();
    const std::vector<std::string> expected{"running ended", "queued dropped"};
    EXPECT_EQ(events, expected);
    EXPECT_EQ(droppedOn, std::this_thread::get_id());
}

TEST_F(TaskControllerTest, NothingIsSignalledOnceTheDestructorHasBegun) {
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    auto controller = std::make_unique<Task::Controller>();
    EventLog log(*controller);
    controller->submitConcurrent([&, released] {
        started.set_value();
        released.wait();
    });
    ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    std::thread releaser([&release] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        release.set_value();
    });
    controller.reset();
    releaser.join();
    std::lock_guard<std::mutex> lock(log.mutex);
    EXPECT_EQ(log.events, std::vector<std::string>{"isBusy"});
}
