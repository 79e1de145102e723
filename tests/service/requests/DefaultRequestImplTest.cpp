#include "service/requests/DefaultRequestImpl.h"

#include "tests/service/requests/SampleRequest.h"

#include <gtest/gtest.h>
#include <type_traits>

using EditorService::AbstractRequestSerializer;
using EditorService::DefaultRequestImpl;
using EditorService::Request;
using EditorService::Testing::SampleRequest;

namespace {

TEST(DefaultRequestImplTest, EachCallGivesADistinctSerializerOfTheRequestsClass) {
    const SampleRequest request;

    const auto first = request.serializer();
    const auto second = request.serializer();

    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first.get(), second.get());
    EXPECT_NE(dynamic_cast<SampleRequest::Serializer*>(first.get()), nullptr);
    EXPECT_NE(dynamic_cast<SampleRequest::Serializer*>(second.get()), nullptr);
}

TEST(DefaultRequestImplTest, SerializerOutlivesTheRequestThatMadeIt) {
    std::unique_ptr<AbstractRequestSerializer> serializer;
    {
        SampleRequest request;
        serializer = request.serializer();
    }
    SampleRequest other;
    other.limit = 2;

    EXPECT_EQ(serializer->toCli(other), (QStringList{"--limit=2", "--count=3"}));
}

TEST(DefaultRequestImplTest, IsARequestThatCopiesAndMovesByItsFields) {
    static_assert(std::is_base_of_v<Request, DefaultRequestImpl<SampleRequest>>);
    static_assert(std::is_default_constructible_v<DefaultRequestImpl<SampleRequest>>);
    static_assert(std::is_copy_assignable_v<DefaultRequestImpl<SampleRequest>>);
    static_assert(std::is_move_assignable_v<DefaultRequestImpl<SampleRequest>>);
    SampleRequest original;
    original.label = QStringLiteral("x");

    SampleRequest copy = original;
    SampleRequest moved = std::move(copy);
    SampleRequest assigned;
    assigned = moved;

    EXPECT_EQ(moved, original);
    EXPECT_EQ(assigned, original);
}

TEST(DefaultRequestImplTest, KeepsTheBaseDescriptionHelpAndValidation) {
    const SampleRequest request;

    EXPECT_TRUE(request.description().isEmpty());
    EXPECT_TRUE(request.additionalHelp().isEmpty());
    EXPECT_NO_THROW(request.validateOnLoad());
}

} // namespace
