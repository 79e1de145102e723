#include "media/ExportValues.h"

#include <gtest/gtest.h>

namespace ExportValues = EditorService::ExportValues;

TEST(ExportValuesTest, ProgressShowsTheShareToThreeDecimalsAndTheRateToOne) {
    const auto value = ExportValues::progress("out.mp4", {0.123456, 84, 57.00656454533496});
    EXPECT_EQ(value.dump(),
              R"({"export":{"fps":57.0,"frames":84,"output":"out.mp4","progress":0.123}})");
}

TEST(ExportValuesTest, RoundingGoesToTheNearestAndHalvesAwayFromZero) {
    EXPECT_EQ(ExportValues::rounded(61.46, 1), 61.5);
    EXPECT_EQ(ExportValues::rounded(61.44, 1), 61.4);
    EXPECT_EQ(ExportValues::rounded(0.25, 1), 0.3);
    EXPECT_EQ(ExportValues::rounded(0.4204, 3), 0.42);
    EXPECT_EQ(ExportValues::rounded(1.0, 3), 1.0);
    EXPECT_EQ(ExportValues::rounded(0.0, 1), 0.0);
}

TEST(ExportValuesTest, AWaitingExportSaysHowManyWaitBeforeIt) {
    EXPECT_EQ(ExportValues::queued("out.mp4", 2).dump(),
              R"({"export":{"ahead":2,"output":"out.mp4","queued":true}})");
}

TEST(ExportValuesTest, ASkippedExportNamesItsOutput) {
    EXPECT_EQ(ExportValues::skipped("out.mp4").dump(),
              R"({"export":{"output":"out.mp4","skipped":true}})");
}

TEST(ExportValuesTest, TheDoneValueHasNullAudioForAnOutputWithout) {
    Export::ExportSettings settings;
    settings.input = "in.mp4";
    settings.output = "out.mp4";
    Export::ExportResult result;
    result.frames = 2;
    result.durationMs = 80;
    result.bytes = 200;
    result.video = Export::ExportResult::Video{"h264", 320, 240, 20000};
    const auto done = ExportValues::done(settings, result, 1000, 2000).at("export");
    EXPECT_TRUE(done.at("audio").is_null());
    EXPECT_EQ(done.at("done"), true);
    EXPECT_EQ(done.at("started_ms"), 1000);
    EXPECT_EQ(done.at("finished_ms"), 2000);
    EXPECT_EQ(done.at("video").at("codec"), "h264");
}
