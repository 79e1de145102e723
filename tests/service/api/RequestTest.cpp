#include "service/api/Request.h"

#include "tests/service/api/CountingService.h"

#include <gtest/gtest.h>

using EditorService::Testing::CountRequest;

TEST(RequestTest, BaseVersionsAcceptAndDescribeNothing) {
    const CountRequest request;
    EXPECT_NO_THROW(request.validateOnLoad());
    EXPECT_TRUE(request.description().isEmpty());
    EXPECT_TRUE(request.additionalHelp().isEmpty());
}

TEST(RequestTest, SerializerIsNewOnEveryCall) {
    const CountRequest request;
    EXPECT_NE(request.serializer(), request.serializer());
}
