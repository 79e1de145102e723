#include "service/contexts/EngineContext.h"

#include "platform/clientapi/FontsSetup.h"
#include "platform/engine/CoreManager.h"
#include "platform/engine/CoreManagerOptions.h"
#include "platform/engine/PluginRegistry.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/ogl/OglManager.h"
#include "tests/service/contexts/RuntimeFixture.h"
#include "tests/support/FailedWith.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <optional>
#include <stdexcept>
#include <type_traits>

using EditorService::AbstractContext;
using EditorService::EngineContext;
using EditorService::Testing::FailedWith;
using Velmor::Core::CoreManager;
using Velmor::Core::PluginRegistry;
using Velmor::Ogl::OglManager;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;
namespace Options = Velmor::Core::CoreManagerOptions;

namespace {

std::vector<std::string> disabledPlugins() {
    return CoreManager::Instance()
        .ModuleOptions()
        .at(Options::MODULE_PLUGIN_LOADER)
        .at(Options::OPT_DISABLED_PLUGINS);
}

std::vector<std::string> allPluginsBut(const std::vector<std::string>& removed) {
    std::vector<std::string> plugins = PluginRegistry::KnownPlugins();
    for (const auto& name : removed)
        plugins.erase(std::remove(plugins.begin(), plugins.end(), name), plugins.end());
    return plugins;
}

} // namespace

class EngineContextTest : public EditorService::Testing::RuntimeFixture {};

TEST_F(EngineContextTest, HasOneCommandLineOptionDisablePlugin) {
    const auto options = EngineContext::commandLineOptions();
    ASSERT_EQ(options.size(), 1);
    EXPECT_EQ(options[0].names(), QStringList{"disable-plugin"});
    EXPECT_EQ(options[0].valueName(), "plugin name");
    EXPECT_TRUE(options[0].defaultValues().isEmpty());
    EXPECT_EQ(options[0].description(),
              "List of plugins to disable.\nPossible values:\nEffectsIPP\nEffects\nEffectsFF\n"
              "EffectsOgl\nDecodersFF\nEncodersFF\nEncoderLossless\nEncoderAMF\nEncoderNVENC\n"
              "DecoderNVDEC\nEncoderIM\nDecoderMF\nEncoderMF\nDecoderRAW\n\nUsage:\n"
              "--disable-plugin=EffectsFF\n--disable-plugin=EffectsOgl");
}

TEST_F(EngineContextTest, IsAContextWithoutAMetaObjectOfItsOwn) {
    EXPECT_TRUE((std::is_base_of_v<AbstractContext, EngineContext>));
    EXPECT_TRUE(std::is_nothrow_destructible_v<EngineContext>);
    const EngineContext context({"app"});
    EXPECT_EQ(context.metaObject(), &AbstractContext::staticMetaObject);
    EXPECT_EQ(context.parent(), nullptr);
}

TEST_F(EngineContextTest, StartsTheCoreThenOpenGLThenTheFonts) {
    const EngineContext context({"app"});
    const std::vector<std::string> expected{
        "Utils::SetModuleOption",         "CoreManager::Initialize",
        "PluginLoader::Finished",         "CoreManager::WaitUntilInitialized",
        "OglManager::IsInitialized",      "OglManager::Initialize",
        "AppLocations::GetFontsLocation", "FontsSetup"};
    EXPECT_EQ(CallLog::entries(), expected);
    EXPECT_TRUE(CoreManager::Instance().IsInitialized());
    EXPECT_TRUE(OglManager::GetInstance().IsInitialized());
}

TEST_F(EngineContextTest, WithNoDisablePluginTheLoaderEntryHoldsAnEmptyVector) {
    const EngineContext context({"app"});
    const auto table = CoreManager::Instance().ModuleOptions();
    ASSERT_EQ(table.size(), 1u);
    ASSERT_EQ(table.at(Options::MODULE_PLUGIN_LOADER).size(), 1u);
    EXPECT_TRUE(disabledPlugins().empty());
    EXPECT_EQ(CoreManager::Instance().LoadedPlugins(), PluginRegistry::KnownPlugins());
}

TEST_F(EngineContextTest, TwoDisablePluginOptionsGiveTwoStringsInCommandLineOrder) {
    const EngineContext context(
        {"app", "--disable-plugin=EffectsOgl", "--disable-plugin", "EffectsFF"});
    EXPECT_EQ(disabledPlugins(), (std::vector<std::string>{"EffectsOgl", "EffectsFF"}));
    EXPECT_EQ(CoreManager::Instance().LoadedPlugins(), allPluginsBut({"EffectsOgl", "EffectsFF"}));
}

TEST_F(EngineContextTest, AValueIsTakenWholeWithItsComma) {
    const EngineContext context({"app", "--disable-plugin=EffectsFF,EffectsOgl"});
    EXPECT_EQ(disabledPlugins(), std::vector<std::string>{"EffectsFF,EffectsOgl"});
    EXPECT_EQ(CoreManager::Instance().LoadedPlugins(), PluginRegistry::KnownPlugins());
}

TEST_F(EngineContextTest, AnUnknownPluginNameGoesToTheLoaderWithoutATest) {
    const EngineContext context({"app", "--disable-plugin=NoSuchPlugin"});
    EXPECT_EQ(disabledPlugins(), std::vector<std::string>{"NoSuchPlugin"});
    EXPECT_EQ(CoreManager::Instance().LoadedPlugins(), PluginRegistry::KnownPlugins());
}

TEST_F(EngineContextTest, OtherOptionsOfTheArgumentListAreNoError) {
    const EngineContext context({"app", "--hot-start", "--cache-ttl=7", "--rj", "3",
                                 "--disable-plugin=Effects", "--unknown", "positional"});
    EXPECT_EQ(disabledPlugins(), std::vector<std::string>{"Effects"});
}

TEST_F(EngineContextTest, OpenGLInitialisedAlreadyIsNotInitialisedAgainButDeinitialisedAtTeardown) {
    OglManager::GetInstance().Initialize();
    CallLog::clear();
    {
        const EngineContext context({"app"});
        EXPECT_EQ(count("OglManager::IsInitialized"), 1);
        EXPECT_EQ(count("OglManager::Initialize"), 0);
    }
    EXPECT_EQ(count("OglManager::Deinitialize"), 1);
    EXPECT_FALSE(OglManager::GetInstance().IsInitialized());
}

TEST_F(EngineContextTest, TeardownDeinitialisesOpenGLThenUninitialisesTheCore) {
    std::optional<EngineContext> context(std::in_place, QStringList{"app"});
    CallLog::clear();
    context.reset();
    const std::vector<std::string> expected{"OglManager::Deinitialize",
                                            "CoreManager::Uninitialize"};
    EXPECT_EQ(CallLog::entries(), expected);
    EXPECT_FALSE(CoreManager::Instance().IsInitialized());
}

TEST_F(EngineContextTest, RegistersTheFontsOfTheSecondLocation) {
    QFile font(QDir(fontsDirectory()).filePath("Sans.ttf"));
    ASSERT_TRUE(font.open(QIODevice::WriteOnly));
    font.close();
    const EngineContext context({"app"});
    EXPECT_TRUE(Velmor::ClientAPI::RegisteredFonts().contains(
        QFileInfo(font.fileName()).absoluteFilePath()));
}

TEST_F(EngineContextTest, ConstructingAgainAfterAFailureInitialisesTheCoreAgain) {
    Probe::failNext("OglManager::Initialize");
    EXPECT_THROW(EngineContext({"app"}), std::runtime_error);
    const EngineContext context({"app"});
    EXPECT_EQ(count("CoreManager::Initialize"), 2);
    EXPECT_EQ(count("CoreManager::Uninitialize"), 0);
}

TEST_F(EngineContextTest, AnExceptionInsideTheDestructorEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            const EngineContext context({"app"});
            Probe::onNext("CoreManager::Uninitialize",
                          [] { throw std::runtime_error("Uninitialize failed"); });
        },
        "");
}

struct EngineFailure {
    const char* name;
    const char* point;
};

class EngineContextFailureTest : public EngineContextTest,
                                 public testing::WithParamInterface<EngineFailure> {};

TEST_P(EngineContextFailureTest, LeavesTheConstructorAndShutsNothingDown) {
    const std::string point = GetParam().point;
    Probe::failNext(point);
    EXPECT_THAT([&] { const EngineContext context({"app"}); },
                FailedWith<std::runtime_error>("Injected failure at " + point));
    EXPECT_EQ(count("OglManager::Deinitialize"), 0);
    EXPECT_EQ(count("CoreManager::Uninitialize"), 0);
    CoreManager::Instance().Uninitialize();
}

INSTANTIATE_TEST_SUITE_P(
    Steps, EngineContextFailureTest,
    testing::Values(EngineFailure{"Initialize", "CoreManager::Initialize"},
                    EngineFailure{"WaitUntilInitialized", "CoreManager::WaitUntilInitialized"},
                    EngineFailure{"OpenGL", "OglManager::Initialize"},
                    EngineFailure{"FontsSetup", "FontsSetup"}),
    [](const testing::TestParamInfo<EngineFailure>& info) { return info.param.name; });
