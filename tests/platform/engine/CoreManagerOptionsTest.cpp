#include "platform/engine/CoreManagerOptions.h"

#include <gtest/gtest.h>

using namespace Velmor::Core;

TEST(CoreManagerOptionsTest, NameThePluginLoaderAndItsDisabledPluginsOption) {
    EXPECT_EQ(CoreManagerOptions::MODULE_PLUGIN_LOADER, "PluginLoader");
    EXPECT_EQ(CoreManagerOptions::OPT_DISABLED_PLUGINS, "DisabledPlugins");
}
