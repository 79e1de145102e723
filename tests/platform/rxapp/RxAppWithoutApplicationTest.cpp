// Runs without the shared test main, so that no QCoreApplication exists.
#include "platform/rxapp/RxApp.h"
#include "tests/support/FailedWith.h"

#include <QCoreApplication>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using EditorService::Testing::FailedWith;

namespace {

// Once made, the instance lasts to the end of the process, which a repeated run shares.
bool instanceMade = false;

} // namespace

TEST(RxAppWithoutApplicationTest, InstanceThrowsLogicErrorWhileNoQCoreApplicationExists) {
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    if (instanceMade)
        GTEST_SKIP() << "the instance was made earlier in this process";
    EXPECT_THAT([&] { RxApp::instance(); },
                FailedWith<std::logic_error>("RxApp needs a live QCoreApplication"));
}

TEST(RxAppWithoutApplicationTest, NoThreadIsTheMainThreadWhileNoQCoreApplicationExists) {
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    EXPECT_FALSE(RxApp::onMainThread());
}

TEST(RxAppWithoutApplicationTest, InstanceIsMadeOnceAnApplicationExists) {
    int argc = 1;
    char name[] = "rxapp_noapp_tests";
    char* argv[] = {name, nullptr};
    try {
        RxApp::instance();
    } catch (const std::logic_error&) {
    }
    QCoreApplication application(argc, argv);
    EXPECT_NE(RxApp::instance(), nullptr);
    instanceMade = true;
}
