#include "tests/host/HostProcess.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace EditorService::Testing;

namespace {

std::vector<nlohmann::json> valuesOf(const HostRun& run) {
    std::vector<nlohmann::json> values;
    for (const QByteArray& line : run.outputLines())
        values.push_back(nlohmann::json::parse(line.toStdString()));
    return values;
}

TEST(ContentTest, ListsTheFourteenTransitions) {
    const HostRun run = runHost({"content", "transitions"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const auto values = valuesOf(run);
    ASSERT_EQ(values.size(), 14u);
    EXPECT_EQ(values.front()["transition"]["name"], "fade");
    EXPECT_EQ(values.back()["transition"]["name"], "circle-close");
    EXPECT_TRUE(values.back()["transition"]["description"].is_string());
}

TEST(ContentTest, ListsTheShippedThemesWithTheirDefaults) {
    const HostRun run = runHost({"content", "--kind=themes"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const auto values = valuesOf(run);
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0]["theme"]["name"], "Classic");
    EXPECT_EQ(values[0]["theme"]["transition"]["type"], "fade");
    EXPECT_EQ(values[1]["theme"]["name"], "Travel");
    EXPECT_EQ(values[1]["theme"]["title"]["font"], "DejaVu Serif");
}

TEST(ContentTest, ListsEasingsAndOverlays) {
    const auto easings = valuesOf(runHost({"content", "pan-zoom"}));
    ASSERT_EQ(easings.size(), 4u);
    EXPECT_EQ(easings[3]["easing"]["name"], "ease-in-out");
    const auto overlays = valuesOf(runHost({"content", "overlays"}));
    ASSERT_EQ(overlays.size(), 3u);
    EXPECT_EQ(overlays[0]["overlay"]["positions"].size(), 9u);
    EXPECT_FALSE(overlays[1]["overlay"].contains("positions"));
}

TEST(ContentTest, HelpNamesTheKinds) {
    const HostRun run = runHost({"content", "--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.output.indexOf("transitions, pan-zoom, overlays or themes"), -1)
        << run.output.toStdString();
}

TEST(ContentTest, AnUnknownKindFails) {
    const HostRun run = runHost({"content", "effects"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.indexOf("Unknown content \"effects\", expects transitions, pan-zoom, "
                                 "overlays or themes"),
              -1)
        << run.errors.toStdString();
    EXPECT_TRUE(run.output.isEmpty());
}

TEST(ContentTest, NoKindFails) {
    const HostRun run = runHost({"content"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.indexOf("No content kind specified, expects transitions, pan-zoom, "
                                 "overlays or themes"),
              -1)
        << run.errors.toStdString();
}

} // namespace
