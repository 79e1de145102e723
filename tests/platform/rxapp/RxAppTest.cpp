#include "platform/rxapp/RxApp.h"

#include "tests/support/EventLoop.h"

#include <QCoreApplication>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

using EditorService::Testing::spinUntil;
using testing::ElementsAre;

TEST(RxAppTest, InstanceIsOneObjectForTheWholeProcess) {
    RxApp* fromOtherThread = nullptr;
    std::thread other([&] { fromOtherThread = RxApp::instance(); });
    other.join();
    EXPECT_NE(RxApp::instance(), nullptr);
    EXPECT_EQ(RxApp::instance(), fromOtherThread);
}

TEST(RxAppTest, MainThreadDeliversOnTheQtMainThreadInOrder) {
    rxcpp::subjects::subject<int> source;
    std::vector<int> received;
    std::atomic<bool> done{false};
    bool allOnMainThread = true;
    source.get_observable()
        .observe_on(RxApp::instance()->mainThread())
        .subscribe(
            [&](int v) {
                allOnMainThread =
                    allOnMainThread
                    && QThread::currentThread() == QCoreApplication::instance()->thread();
                received.push_back(v);
            },
            [](std::exception_ptr) {}, [&] { done = true; });
    std::thread producer([&] {
        for (int i = 0; i < 1000; ++i)
            source.get_subscriber().on_next(i);
        source.get_subscriber().on_completed();
    });
    producer.join();
    ASSERT_TRUE(spinUntil([&] { return done.load(); }));
    EXPECT_TRUE(allOnMainThread);
    ASSERT_EQ(received.size(), 1000u);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(received[i], i);
}

TEST(RxAppTest, MainThreadNeverDeliversInsideTheCallThatQueued) {
    rxcpp::subjects::subject<int> source;
    std::vector<int> received;
    source.get_observable()
        .observe_on(RxApp::instance()->mainThread())
        .subscribe([&](int v) { received.push_back(v); }, [](std::exception_ptr) {});
    source.get_subscriber().on_next(1);
    EXPECT_TRUE(received.empty());
    ASSERT_TRUE(spinUntil([&] { return !received.empty(); }));
    EXPECT_THAT(received, ElementsAre(1));
}

TEST(RxAppTest, OnlyTheQtMainThreadIsTheMainThread) {
    EXPECT_TRUE(RxApp::onMainThread());
    bool onOtherThread = true;
    std::thread([&] { onOtherThread = RxApp::onMainThread(); }).join();
    EXPECT_FALSE(onOtherThread);
}

TEST(RxAppTest, NewThreadGivesEachSubscriptionAThreadOfItsOwn) {
    rxcpp::subjects::subject<int> source;
    auto moved = source.get_observable().observe_on(RxApp::instance()->newThread());
    std::mutex lock;
    std::vector<std::thread::id> threads;
    for (int i = 0; i < 2; ++i)
        moved.subscribe(
            [&](int) {
                std::lock_guard<std::mutex> guard(lock);
                threads.push_back(std::this_thread::get_id());
            },
            [](std::exception_ptr) {});
    // Both workers are alive until completion, so their threads cannot share an id.
    source.get_subscriber().on_next(1);
    ASSERT_TRUE(spinUntil([&] {
        std::lock_guard<std::mutex> guard(lock);
        return threads.size() == 2;
    }));
    {
        std::lock_guard<std::mutex> guard(lock);
        EXPECT_NE(threads[0], threads[1]);
        EXPECT_NE(threads[0], std::this_thread::get_id());
        EXPECT_NE(threads[1], std::this_thread::get_id());
    }
    source.get_subscriber().on_completed();
}
