#include "platform/engine/Utils.h"

#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>

using namespace Velmor::Core;
using Velmor::Testing::CallLog;

TEST(UtilsTest, SetModuleOptionAddsTheModuleAndTheOption) {
    ModuleOptionTable table;
    Utils::SetModuleOption(table, "Loader", "Skip", {"A", "B"});
    const ModuleOptionTable expected{{"Loader", {{"Skip", {"A", "B"}}}}};
    EXPECT_EQ(table, expected);
}

TEST(UtilsTest, SetModuleOptionWithNoValuesStillMakesTheEntry) {
    ModuleOptionTable table;
    Utils::SetModuleOption(table, "Loader", "Skip", {});
    ASSERT_EQ(table.count("Loader"), 1u);
    ASSERT_EQ(table.at("Loader").count("Skip"), 1u);
    EXPECT_TRUE(table.at("Loader").at("Skip").empty());
}

TEST(UtilsTest, SetModuleOptionReplacesTheValuesAndKeepsOtherOptions) {
    ModuleOptionTable table;
    Utils::SetModuleOption(table, "Loader", "Skip", {"A"});
    Utils::SetModuleOption(table, "Loader", "Paths", {"/p"});
    Utils::SetModuleOption(table, "Loader", "Skip", {"B"});
    const ModuleOptionTable expected{{"Loader", {{"Paths", {"/p"}}, {"Skip", {"B"}}}}};
    EXPECT_EQ(table, expected);
}

TEST(UtilsTest, SetModuleOptionIsRecorded) {
    CallLog::clear();
    ModuleOptionTable table;
    Utils::SetModuleOption(table, "Loader", "Skip", {});
    EXPECT_EQ(CallLog::entries(), std::vector<std::string>{"Utils::SetModuleOption"});
}
