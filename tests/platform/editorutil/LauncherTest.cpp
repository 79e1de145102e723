#include "platform/editorutil/Launcher.h"

#include "platform/foundation/CallLog.h"
#include "tests/platform/editorutil/VirtualSlot.h"
#include "tests/support/FailedWith.h"

#include <QCoreApplication>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using EditorService::Testing::virtualSlot;
using Velmor::Testing::CallLog;

namespace {

class PlainLauncher : public Launcher {
public:
    using Launcher::registerInstance;
    using Launcher::unregisterInstance;
};

class LauncherTest : public testing::Test {
protected:
    void SetUp() override { CallLog::clear(); }
};

} // namespace

TEST_F(LauncherTest, InstanceIsNullWhenNoneIsRegistered) {
    EXPECT_EQ(Launcher::instance(), nullptr);
    PlainLauncher launcher;
    EXPECT_EQ(Launcher::instance(), nullptr);
}

TEST_F(LauncherTest, RegisterInstanceMakesTheLauncherTheProcessWideOne) {
    PlainLauncher launcher;
    PlainLauncher::registerInstance(&launcher);
    EXPECT_EQ(Launcher::instance(), &launcher);
    PlainLauncher::unregisterInstance(&launcher);
}

TEST_F(LauncherTest, UnregisterInstanceClearsTheProcessWideLauncher) {
    PlainLauncher launcher;
    PlainLauncher::registerInstance(&launcher);
    PlainLauncher::unregisterInstance(&launcher);
    EXPECT_EQ(Launcher::instance(), nullptr);
}

TEST_F(LauncherTest, UnregisteringAnotherLauncherLeavesTheRegisteredOne) {
    PlainLauncher registered;
    PlainLauncher other;
    PlainLauncher::registerInstance(&registered);
    PlainLauncher::unregisterInstance(&other);
    EXPECT_EQ(Launcher::instance(), &registered);
    PlainLauncher::unregisterInstance(&registered);
}

TEST_F(LauncherTest, RegisteringWhileAnotherIsRegisteredThrows) {
    PlainLauncher registered;
    PlainLauncher second;
    PlainLauncher::registerInstance(&registered);
    EXPECT_THAT([&] { PlainLauncher::registerInstance(&second); },
                FailedWith<std::logic_error>("A launcher is already registered"));
    EXPECT_EQ(Launcher::instance(), &registered);
    PlainLauncher::unregisterInstance(&registered);
}

TEST_F(LauncherTest, RegisteringNullThrows) {
    EXPECT_THAT([&] { PlainLauncher::registerInstance(nullptr); },
                FailedWith<std::invalid_argument>("Cannot register a null launcher"));
    EXPECT_EQ(Launcher::instance(), nullptr);
}

TEST_F(LauncherTest, LifeAndRegistrationAreRecorded) {
    {
        PlainLauncher launcher;
        PlainLauncher::registerInstance(&launcher);
        PlainLauncher::unregisterInstance(&launcher);
    }
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{"Launcher::Launcher", "Launcher::registerInstance",
                                        "Launcher::unregisterInstance", "Launcher::~Launcher"}));
}

TEST_F(LauncherTest, StartUpPhasesLeaveOnlyTheirTrace) {
    PlainLauncher launcher;
    CallLog::clear();
    launcher.initializeOpengl();
    launcher.initializeStartActions();
    launcher.initializeActions();
    launcher.startCoreInitialization();
    launcher.waitForCoreInitialization();
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{
                  "Launcher::initializeOpengl", "Launcher::initializeStartActions",
                  "Launcher::initializeActions", "Launcher::startCoreInitialization",
                  "Launcher::waitForCoreInitialization"}));
    EXPECT_FALSE(launcher.isCoreInitialized());
}

TEST_F(LauncherTest, CoreIsNeverInitializedAndThereIsNoActionParser) {
    PlainLauncher launcher;
    EXPECT_FALSE(launcher.isCoreInitialized());
    EXPECT_EQ(launcher.actionParser(), nullptr);
}

TEST_F(LauncherTest, CommandLineArgumentsAreThoseOfTheApplication) {
    PlainLauncher launcher;
    EXPECT_EQ(launcher.commandLineArguments(), QCoreApplication::arguments());
    ASSERT_FALSE(launcher.commandLineArguments().isEmpty());
}

TEST_F(LauncherTest, WorkerNotificationsChangeNothing) {
    PlainLauncher launcher;
    CallLog::clear();
    int worker = 0;
    launcher.workerIsBusy(&worker);
    launcher.workerIsIdle(&worker);
    launcher.workerIsBusy(nullptr);
    launcher.workerIsIdle(nullptr);
    EXPECT_TRUE(CallLog::entries().empty());
    EXPECT_FALSE(launcher.isCoreInitialized());
    EXPECT_EQ(Launcher::instance(), nullptr);
}

namespace {

struct SlotRow {
    const char* name;
    long slot;
    std::function<long()> slotOf;
};

// Names the row in test listings instead of dumping its bytes.
void PrintTo(const SlotRow& row, std::ostream* out) {
    *out << row.name;
}

class LauncherSlotTest : public testing::TestWithParam<SlotRow> {};

TEST_P(LauncherSlotTest, OperationSitsInItsSlot) {
    if (!EditorService::Testing::virtualSlotsAreReadable())
        GTEST_SKIP() << "virtual slots are not readable with this ABI";
    EXPECT_EQ(GetParam().slotOf(), GetParam().slot);
}

// Slots 0 and 1 hold the destructor.
INSTANTIATE_TEST_SUITE_P(
    Operations, LauncherSlotTest,
    testing::Values(
        SlotRow{"initializeOpengl", 2, [] { return virtualSlot(&Launcher::initializeOpengl); }},
        SlotRow{"initializeStartActions", 3,
                [] { return virtualSlot(&Launcher::initializeStartActions); }},
        SlotRow{"initializeActions", 4, [] { return virtualSlot(&Launcher::initializeActions); }},
        SlotRow{"startCoreInitialization", 5,
                [] { return virtualSlot(&Launcher::startCoreInitialization); }},
        SlotRow{"waitForCoreInitialization", 6,
                [] { return virtualSlot(&Launcher::waitForCoreInitialization); }},
        SlotRow{"isCoreInitialized", 7, [] { return virtualSlot(&Launcher::isCoreInitialized); }},
        SlotRow{"actionParser", 8, [] { return virtualSlot(&Launcher::actionParser); }},
        SlotRow{"commandLineArguments", 9,
                [] { return virtualSlot(&Launcher::commandLineArguments); }},
        SlotRow{"workerIsBusy", 10, [] { return virtualSlot(&Launcher::workerIsBusy); }},
        SlotRow{"workerIsIdle", 11, [] { return virtualSlot(&Launcher::workerIsIdle); }}),
    [](const testing::TestParamInfo<SlotRow>& info) { return info.param.name; });

} // namespace
