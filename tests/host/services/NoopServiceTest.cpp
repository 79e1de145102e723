#include "host/services/NoopService.h"

#include "tests/support/Collect.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;

TEST(NoopServiceTest, EmitsOneValueAndCompletesInsideSubscribe) {
    NoopService service;
    const auto collected = collect(service.run(QStringList{"app"}));
    EXPECT_EQ(collected->values, (std::vector<nlohmann::json>{{{"noop", true}}}));
    EXPECT_TRUE(collected->completed);
}
