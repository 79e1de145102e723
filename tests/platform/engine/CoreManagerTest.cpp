#include "platform/engine/CoreManager.h"

#include "platform/engine/CoreManagerOptions.h"
#include "platform/engine/PluginError.h"
#include "platform/engine/PluginRegistry.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mutex>
#include <stdexcept>
#include <thread>

using EditorService::Testing::FailedWith;
using namespace Velmor::Core;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

class RecordingTracker : public Velmor::Proc::ICoreTracker {
public:
    void OnPluginLoaded(const std::string& pluginName) override {
        std::lock_guard<std::mutex> lock(mutex);
        plugins.push_back(pluginName);
        threads.push_back(std::this_thread::get_id());
    }

    std::mutex mutex;
    std::vector<std::string> plugins;
    std::vector<std::thread::id> threads;
};

ModuleOptionTable disabling(const std::vector<std::string>& plugins) {
    ModuleOptionTable table;
    Utils::SetModuleOption(table, CoreManagerOptions::MODULE_PLUGIN_LOADER,
                           CoreManagerOptions::OPT_DISABLED_PLUGINS, plugins);
    return table;
}

std::vector<std::string> without(std::vector<std::string> plugins,
                                 const std::vector<std::string>& removed) {
    for (const auto& name : removed)
        plugins.erase(std::remove(plugins.begin(), plugins.end(), name), plugins.end());
    return plugins;
}

} // namespace

class CoreManagerTest : public testing::Test {
protected:
    void SetUp() override {
        Probe::clear();
        CoreManager::Instance().Uninitialize();
        CallLog::clear();
    }
    void TearDown() override {
        Probe::clear();
        CoreManager::Instance().Uninitialize();
    }
};

TEST_F(CoreManagerTest, InstanceIsOneObject) {
    EXPECT_EQ(&CoreManager::Instance(), &CoreManager::Instance());
}

TEST_F(CoreManagerTest, WaitUntilInitializedReturnsOnlyAfterTheLoaderHasFinished) {
    auto& core = CoreManager::Instance();
    const auto table = disabling({});
    CallLog::clear();
    core.Initialize({}, table, {});
    core.WaitUntilInitialized();
    EXPECT_TRUE(core.IsInitialized());
    const std::vector<std::string> expected{"CoreManager::Initialize", "PluginLoader::Finished",
                                            "CoreManager::WaitUntilInitialized"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(CoreManagerTest, LoadsEveryKnownPluginWhenNoneIsDisabled) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, ModuleOptionTable(), {});
    core.WaitUntilInitialized();
    EXPECT_EQ(core.LoadedPlugins(), PluginRegistry::KnownPlugins());
}

TEST_F(CoreManagerTest, DisabledPluginsAreNotLoaded) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, disabling({"EffectsFF", "EffectsOgl"}), {});
    core.WaitUntilInitialized();
    EXPECT_EQ(core.LoadedPlugins(),
              without(PluginRegistry::KnownPlugins(), {"EffectsFF", "EffectsOgl"}));
}

TEST_F(CoreManagerTest, UnknownDisabledNamesAreIgnored) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, disabling({"NoSuchPlugin", "EffectsFF,EffectsOgl"}), {});
    core.WaitUntilInitialized();
    EXPECT_EQ(core.LoadedPlugins(), PluginRegistry::KnownPlugins());
}

TEST_F(CoreManagerTest, KeepsTheModuleOptionTableOfTheLastInitialize) {
    auto& core = CoreManager::Instance();
    const auto table = disabling({"DecoderRAW"});
    core.Initialize({}, table, {});
    core.WaitUntilInitialized();
    EXPECT_EQ(core.ModuleOptions(), table);
}

TEST_F(CoreManagerTest, TheTrackerHearsOfEachPluginOnTheLoaderThread) {
    boost::intrusive_ptr<RecordingTracker> tracker(new RecordingTracker);
    auto& core = CoreManager::Instance();
    core.Initialize({}, disabling({"Effects"}), tracker);
    core.WaitUntilInitialized();
    std::lock_guard<std::mutex> lock(tracker->mutex);
    EXPECT_EQ(tracker->plugins, without(PluginRegistry::KnownPlugins(), {"Effects"}));
    for (const auto& thread : tracker->threads)
        EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(CoreManagerTest, OnInitializedIsCalledOnceOnTheLoaderThread) {
    std::atomic<int> calls{0};
    std::thread::id caller;
    auto& core = CoreManager::Instance();
    core.Initialize(
        [&] {
            caller = std::this_thread::get_id();
            ++calls;
        },
        {}, {});
    core.WaitUntilInitialized();
    core.Uninitialize(); // joins the loader, so the callback has returned
    EXPECT_EQ(calls.load(), 1);
    EXPECT_NE(caller, std::this_thread::get_id());
}

TEST_F(CoreManagerTest, WaitUntilInitializedBeforeInitializeThrowsLogicError) {
    EXPECT_THAT(
        [&] { CoreManager::Instance().WaitUntilInitialized(); },
        FailedWith<std::logic_error>("CoreManager::WaitUntilInitialized called before Initialize"));
}

TEST_F(CoreManagerTest, UninitializeForgetsThePlugins) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, {}, {});
    core.WaitUntilInitialized();
    core.Uninitialize();
    EXPECT_FALSE(core.IsInitialized());
    EXPECT_TRUE(core.LoadedPlugins().empty());
}

TEST_F(CoreManagerTest, InitializeAgainWithoutUninitializeStartsOver) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, disabling({"Effects"}), {});
    core.Initialize({}, disabling({"EffectsIPP"}), {});
    core.WaitUntilInitialized();
    EXPECT_EQ(core.LoadedPlugins(), without(PluginRegistry::KnownPlugins(), {"EffectsIPP"}));
}

TEST_F(CoreManagerTest, AnInjectedFailureOfInitializeStartsNoLoader) {
    Probe::failNext("CoreManager::Initialize");
    auto& core = CoreManager::Instance();
    EXPECT_THROW(core.Initialize({}, {}, {}), std::runtime_error);
    EXPECT_THROW(core.WaitUntilInitialized(), std::logic_error);
}

TEST_F(CoreManagerTest, ALoadedPluginIsReportedLoaded) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, disabling({"EncodersFF"}), {});
    core.WaitUntilInitialized();
    EXPECT_TRUE(core.IsPluginLoaded("DecodersFF"));
    EXPECT_FALSE(core.IsPluginLoaded("EncodersFF"));
    EXPECT_FALSE(core.IsPluginLoaded("NoSuchPlugin"));
}

TEST_F(CoreManagerTest, RequiringADisabledPluginNamesItAndTheWork) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, disabling({"DecodersFF"}), {});
    core.WaitUntilInitialized();
    EXPECT_THAT([&] { core.RequirePlugin("DecodersFF", "read media"); },
                FailedWith<PluginError>("Can not read media: the plug-in DecodersFF is disabled"));
    EXPECT_NO_THROW(core.RequirePlugin("EncodersFF", "encode CODEC_ID_H264"));
}

TEST_F(CoreManagerTest, RequiringAPluginOfAnEngineThatDoesNotRunIsALogicError) {
    EXPECT_THAT([&] { CoreManager::Instance().RequirePlugin("DecodersFF", "read media"); },
                FailedWith<std::logic_error>("Can not read media: the engine is not running"));
}

TEST_F(CoreManagerTest, TheEncodersPluginGivesTheLibrariesEncoders) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, ModuleOptionTable(), {});
    core.WaitUntilInitialized();
    EXPECT_EQ(core.EncoderFor("CODEC_ID_H264"), "libx264");
    EXPECT_EQ(core.EncoderFor("CODEC_ID_HEVC"), "libx265");
    EXPECT_EQ(core.EncoderFor("CODEC_ID_AAC"), "aac");
    EXPECT_EQ(core.EncoderFor("CODEC_ID_PNG"), "png");
    EXPECT_THAT([&] { core.EncoderFor("CODEC_ID_VP9"); },
                FailedWith<PluginError>(
                    "Can not encode CODEC_ID_VP9: the media libraries have no encoder for it"));
}

TEST_F(CoreManagerTest, WithTheEncodersDisabledNoCodecCanBeEncoded) {
    auto& core = CoreManager::Instance();
    core.Initialize({}, disabling({"EncodersFF"}), {});
    core.WaitUntilInitialized();
    EXPECT_THAT([&] { core.EncoderFor("CODEC_ID_H264"); },
                FailedWith<PluginError>(
                    "Can not encode CODEC_ID_H264: the plug-in EncodersFF is disabled"));
}

TEST_F(CoreManagerTest, APluginThatFailsToLoadFailsTheWaitAndLeavesTheEngineDown) {
    auto& core = CoreManager::Instance();
    Probe::failNext("PluginRegistry::Load");
    core.Initialize({}, ModuleOptionTable(), {});
    EXPECT_THAT([&] { core.WaitUntilInitialized(); },
                FailedWith<std::runtime_error>("Injected failure at PluginRegistry::Load"));
    EXPECT_FALSE(core.IsInitialized());
    core.Initialize({}, ModuleOptionTable(), {});
    EXPECT_NO_THROW(core.WaitUntilInitialized());
    EXPECT_TRUE(core.IsInitialized());
}
