#include "host/services/FailService.h"

#include "service/api/Error.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;

TEST(FailServiceTest, FailsAtOnceWithTheDefaultMessage) {
    FailService service;
    const auto collected = collect(service.run(QStringList{"app"}));
    EXPECT_THAT(collected->error, FailedWith<EditorService::Error>("failed"));
    EXPECT_TRUE(collected->values.empty());
}

TEST(FailServiceTest, FailsWithTheGivenMessageAfterTheDelay) {
    FailService service;
    const auto collected =
        collect(service.run(QStringList{"app", "--message=no luck", "--after=20"}));
    EXPECT_FALSE(collected->ended());
    ASSERT_TRUE(spinUntil([collected] { return collected->ended(); }));
    EXPECT_THAT(collected->error, FailedWith<EditorService::Error>("no luck"));
}

TEST(FailServiceTest, NegativeDelayFailsWithError) {
    FailService service;
    const auto collected = collect(service.run(QStringList{"app", "--after=-1"}));
    EXPECT_THAT(collected->error,
                FailedWith<EditorService::Error>("--after must not be negative, is -1"));
}
