#include "host/services/FailService.h"

#include "service/api/Error.h"
#include "tests/host/services/Collect.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;

TEST(FailServiceTest, FailsAtOnceWithTheDefaultMessage) {
    FailService service;
    const auto collected = collect(service.run(QStringList{"app"}));
    ASSERT_TRUE(collected->error);
    EXPECT_THROW(std::rethrow_exception(collected->error), EditorService::Error);
    EXPECT_EQ(errorText(collected->error), "failed");
    EXPECT_TRUE(collected->values.empty());
}

TEST(FailServiceTest, FailsWithTheGivenMessageAfterTheDelay) {
    FailService service;
    const auto collected =
        collect(service.run(QStringList{"app", "--message=no luck", "--after=20"}));
    EXPECT_FALSE(collected->ended());
    ASSERT_TRUE(spinUntil([collected] { return collected->ended(); }));
    EXPECT_THROW(std::rethrow_exception(collected->error), EditorService::Error);
    EXPECT_EQ(errorText(collected->error), "no luck");
}

TEST(FailServiceTest, NegativeDelayFailsWithError) {
    FailService service;
    const auto collected = collect(service.run(QStringList{"app", "--after=-1"}));
    EXPECT_EQ(errorText(collected->error), "--after must not be negative, is -1");
}
