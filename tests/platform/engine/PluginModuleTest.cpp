#include "platform/engine/PluginModule.h"

#include "platform/engine/PluginError.h"
#include "platform/engine/PluginRegistry.h"
#include "tests/support/FailedWith.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using namespace Velmor::Core;

TEST(PluginModuleTest, ThePluginsOnTheMediaLibrariesAreModules) {
    for (const auto& name : PluginRegistry::KnownPlugins()) {
        const bool onTheMediaLibraries =
            name == "EffectsFF" || name == "DecodersFF" || name == "EncodersFF";
        EXPECT_EQ(PluginModule::IsModule(name), onTheMediaLibraries) << name;
    }
}

// This test's program lies deeper in the build tree than the console host, so that the build
// tree's directory, second on the path, is where it finds the modules.
TEST(PluginModuleTest, TheBuildTreeHoldsEveryModule) {
    const auto& searchPath = PluginModule::SearchPath();
    ASSERT_EQ(searchPath.size(), 3u);
    for (const char* name : {"EffectsFF", "DecodersFF", "EncodersFF"})
        EXPECT_TRUE(QFile::exists(QString::fromStdString(searchPath[1]) + "/" + name + ".so"));
}

TEST(PluginModuleTest, AMissingModuleNamesTheDirectoriesSearched) {
    EXPECT_THAT(
        [&] {
            PluginModule::Load("DecodersFF", {"/nonexistent/one", "/nonexistent/two"});
        },
        FailedWith<PluginError>("Can not load the plug-in DecodersFF: DecodersFF.so is in none of "
                                "/nonexistent/one, /nonexistent/two"));
}

TEST(PluginModuleTest, AFileThatIsNoModuleFailsWithTheLoadersReason) {
    QTemporaryDir directory;
    QFile notAModule(directory.filePath("EncodersFF.so"));
    ASSERT_TRUE(notAModule.open(QIODevice::WriteOnly));
    notAModule.write("not a shared library");
    notAModule.close();
    try {
        PluginModule::Load("EncodersFF", {directory.path().toStdString()});
        FAIL() << "no failure";
    } catch (const PluginError& error) {
        const std::string text = error.what();
        EXPECT_EQ(text.rfind("Can not load the plug-in EncodersFF: ", 0), 0u) << text;
        EXPECT_NE(text.find(notAModule.fileName().toStdString()), std::string::npos) << text;
    }
}

// The test program opened the media libraries through DecodersFF before its tests: loading
// another plug-in still maps that plug-in's own module.
TEST(PluginModuleTest, LoadingAPluginMapsItsModule) {
    PluginModule::Load("EncodersFF");
    QFile maps("/proc/self/maps");
    ASSERT_TRUE(maps.open(QIODevice::ReadOnly));
    const QByteArray module =
        QByteArray::fromStdString(PluginModule::SearchPath()[1]) + "/EncodersFF.so";
    EXPECT_TRUE(maps.readAll().contains(module));
}
