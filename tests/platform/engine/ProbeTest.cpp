#include "platform/engine/Probe.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::Testing::Probe;

class ProbeTest : public testing::Test {
protected:
    void SetUp() override { Probe::clear(); }
    void TearDown() override { Probe::clear(); }
};

TEST_F(ProbeTest, AnUnarmedPointDoesNothing) {
    EXPECT_NO_THROW(Probe::hit("Somewhere"));
}

TEST_F(ProbeTest, FailNextThrowsOnceWithThePointInTheText) {
    Probe::failNext("Somewhere");
    EXPECT_THAT([&] { Probe::hit("Somewhere"); },
                FailedWith<std::runtime_error>("Injected failure at Somewhere"));
    EXPECT_NO_THROW(Probe::hit("Somewhere"));
}

TEST_F(ProbeTest, OnlyTheArmedPointFails) {
    Probe::failNext("Somewhere");
    EXPECT_NO_THROW(Probe::hit("Elsewhere"));
    EXPECT_THROW(Probe::hit("Somewhere"), std::runtime_error);
}

TEST_F(ProbeTest, OnNextRunsTheActionOnceOnTheHittingThread) {
    int runs = 0;
    Probe::onNext("Somewhere", [&runs] { ++runs; });
    Probe::hit("Somewhere");
    Probe::hit("Somewhere");
    EXPECT_EQ(runs, 1);
}

TEST_F(ProbeTest, TwoArmingsOfOnePointServeTwoHits) {
    int runs = 0;
    Probe::onNext("Somewhere", [&runs] { ++runs; });
    Probe::onNext("Somewhere", [&runs] { ++runs; });
    Probe::hit("Somewhere");
    Probe::hit("Somewhere");
    Probe::hit("Somewhere");
    EXPECT_EQ(runs, 2);
}

TEST_F(ProbeTest, ClearDisarmsEveryPoint) {
    Probe::failNext("Somewhere");
    Probe::clear();
    EXPECT_NO_THROW(Probe::hit("Somewhere"));
}
