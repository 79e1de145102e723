#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>
#include <thread>

using Velmor::Testing::CallLog;

TEST(CallLogTest, KeepsEntriesInTheOrderTheyWereRecorded) {
    CallLog::clear();
    CallLog::record("CoreManager::Initialize");
    CallLog::record("CoreManager::WaitUntilInitialized");
    EXPECT_EQ(CallLog::entries(), (std::vector<std::string>{"CoreManager::Initialize",
                                                            "CoreManager::WaitUntilInitialized"}));
}

TEST(CallLogTest, ClearRemovesEveryEntry) {
    CallLog::record("CoreManager::Initialize");
    CallLog::clear();
    EXPECT_TRUE(CallLog::entries().empty());
}

TEST(CallLogTest, ObserverSeesEachEntryOnceItIsInTheLog) {
    CallLog::clear();
    std::vector<std::pair<std::string, std::size_t>> seen;
    CallLog::setObserver(
        [&seen](const std::string& entry) { seen.emplace_back(entry, CallLog::entries().size()); });
    CallLog::record("first");
    CallLog::record("second");
    CallLog::setObserver({});
    CallLog::record("third");
    EXPECT_EQ(seen,
              (std::vector<std::pair<std::string, std::size_t>>{{"first", 1}, {"second", 2}}));
    EXPECT_EQ(CallLog::entries().size(), 3u);
}

TEST(CallLogTest, KeepsEveryEntryRecordedFromManyThreads) {
    CallLog::clear();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([] {
            for (int entry = 0; entry < 250; ++entry)
                CallLog::record("Worker::step");
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(CallLog::entries().size(), 1000u);
}
