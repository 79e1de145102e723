#include "host/services/PresetsService.h"

#include "platform/export/PresetProvider.h"
#include "service/api/HelpException.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;

namespace {

TEST(PresetsServiceTest, IsKnownAsPresets) {
    EXPECT_EQ(PresetsService::serviceId(), QStringLiteral("presets"));
}

TEST(PresetsServiceTest, EmitsTheSettingsOfEveryPresetInOrderAndCompletes) {
    PresetsService service;
    const auto collected = collectToEnd(service.run(QStringList{"app"}));
    ASSERT_FALSE(collected->error) << failureText(collected->error);
    EXPECT_TRUE(collected->completed);
    std::vector<std::string> ids;
    for (const auto& value : collected->values)
        ids.push_back(value.at("id").get<std::string>());
    EXPECT_EQ(ids,
              (std::vector<std::string>{"mp4", "2160p", "1440p", "1080p", "720p", "480p", "360p"}));
}

TEST(PresetsServiceTest, EachValueIsThePresetAsTheProviderHasIt) {
    Export::PresetProvider provider;
    provider.load();
    provider.selectTag("format_clive");
    provider.selectPreset("720p");
    PresetsService service;
    const auto collected = collectToEnd(service.run(QStringList{"app"}));
    ASSERT_EQ(collected->values.size(), 7u);
    EXPECT_EQ(collected->values.at(4), provider.preset().toJson());
    EXPECT_EQ(collected->values.at(4).at("width"), 1280);
    EXPECT_EQ(collected->values.at(4).at("fixedResolution"), true);
}

TEST(PresetsServiceTest, HelpStopsTheRequest) {
    PresetsService service;
    const auto collected = collectToEnd(service.run(QStringList{"app", "--help"}));
    ASSERT_TRUE(collected->error);
    EXPECT_THROW(std::rethrow_exception(collected->error), EditorService::CLI::HelpException);
    EXPECT_TRUE(collected->values.empty());
}

} // namespace
