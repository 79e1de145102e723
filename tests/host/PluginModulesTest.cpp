#include "tests/host/HostProcess.h"

#include <gmock/gmock.h>

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

    // The media libraries the loader initialised ("libavformat.so.59", ...).
    static QList<QByteArray> mediaLibraries(const QByteArray& account) {
        QList<QByteArray> found;
        for (const QByteArray& line : account.split('\n')) {
            if (!line.contains("calling init: "))
                continue;
            for (const char* library : {"libavformat", "libavcodec", "libavutil", "libavfilter",
                                        "libswscale", "libswresample"})
                if (line.contains(QByteArray("/") + library + ".so"))
                    found.append(library);
        }
        return found;
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

TEST_F(PluginModulesTest, ACommandWithoutTheEngineMapsNoMediaLibrary) {
    EXPECT_THAT(mediaLibraries(librariesOpenedBy({"echo", "x"})), testing::IsEmpty());
    EXPECT_THAT(mediaLibraries(librariesOpenedBy({"--help"})), testing::IsEmpty());
}

TEST_F(PluginModulesTest, TheEngineMapsTheMediaLibrariesThroughItsModules) {
    EXPECT_THAT(mediaLibraries(librariesOpenedBy({"runtime", "--require=engine"})),
                testing::IsSupersetOf({"libavformat", "libavcodec", "libavutil", "libavfilter",
                                       "libswscale", "libswresample"}));
}

TEST_F(PluginModulesTest, EveryPluginOnTheMediaLibrariesDisabledMapsNone) {
    const QByteArray account =
        librariesOpenedBy({"--disable-plugin=DecodersFF", "--disable-plugin=EncodersFF",
                           "--disable-plugin=EffectsFF", "runtime", "--require=engine"});
    EXPECT_FALSE(account.contains("/plugins/"));
    EXPECT_THAT(mediaLibraries(account), testing::IsEmpty());
}

} // namespace
