#include "tests/host/HostProcess.h"

#include <gtest/gtest.h>

using EditorService::Testing::HostRun;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runHost;

namespace {

// The dynamic loader's own account of the libraries the host maps (LD_DEBUG=libs, on stderr),
// so that what the host opens is seen from outside.
class PluginModulesTest : public testing::Test {
protected:
    void SetUp() override { qputenv("LD_DEBUG", "libs"); }
    void TearDown() override { qunsetenv("LD_DEBUG"); }

    QByteArray librariesOpenedBy(const QStringList& arguments) {
        const HostRun run = runHost(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.output.toStdString();
        return run.errors;
    }

    // Whether the loader initialised the plug-in's module, which it does once it has mapped it.
    static bool opened(const QByteArray& account, const QByteArray& plugin) {
        for (const QByteArray& line : account.split('\n')) {
            if (line.contains("calling init: ")
                && line.trimmed().endsWith("/plugins/" + plugin + ".so"))
                return true;
        }
        return false;
    }

    QuietHostSanitizer quietSanitizer;
};

TEST_F(PluginModulesTest, TheEngineOpensTheModuleOfEveryPluginOnTheMediaLibraries) {
    const QByteArray account = librariesOpenedBy({"runtime", "--require=engine"});
    EXPECT_TRUE(opened(account, "EffectsFF"));
    EXPECT_TRUE(opened(account, "DecodersFF"));
    EXPECT_TRUE(opened(account, "EncodersFF"));
}

TEST_F(PluginModulesTest, ADisabledPluginsModuleIsNeverOpened) {
    const QByteArray account =
        librariesOpenedBy({"--disable-plugin=DecodersFF", "runtime", "--require=engine"});
    EXPECT_FALSE(opened(account, "DecodersFF"));
    EXPECT_TRUE(opened(account, "EncodersFF"));
}

TEST_F(PluginModulesTest, ACommandWithoutTheEngineOpensNoModule) {
    const QByteArray account = librariesOpenedBy({"echo", "x"});
    EXPECT_FALSE(account.contains("/plugins/"));
}

} // namespace
