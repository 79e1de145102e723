#include "service/services/TimeoutRequest.h"

#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/OptionDumper.h"
#include "service/services/TimeoutRequestSerializer.h"
#include "tests/service/services/ProbeRequest.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace EditorService {
namespace {

using Testing::ProbeRequest;

static_assert(std::is_default_constructible_v<TimeoutRequest>);
static_assert(std::is_copy_constructible_v<TimeoutRequest>);
static_assert(std::is_copy_assignable_v<TimeoutRequest>);
static_assert(std::is_nothrow_move_constructible_v<TimeoutRequest>);
static_assert(std::is_nothrow_move_assignable_v<TimeoutRequest>);

std::shared_ptr<Request> probe(int level) {
    auto request = std::make_shared<ProbeRequest>();
    request->level = level;
    return request;
}

TimeoutRequest limited(std::shared_ptr<Request> request, std::optional<int> timeout) {
    TimeoutRequest result;
    result.request = std::move(request);
    result.timeout = timeout;
    return result;
}

// Counts how often the limit's own field visitor validates the request it loads.
struct CountedTimeoutRequest : TimeoutRequest {
    void validateOnLoad() const override { ++validations; }
    mutable int validations = 0;
};

TEST(TimeoutRequestTest, TimeoutOptionHasItsNamesDescriptionValueNameAndDefault) {
    const QCommandLineOption option = TimeoutRequest::timeoutOption();

    EXPECT_EQ(option.names(), (QStringList{"timeout", "t"}));
    EXPECT_EQ(option.description(), QStringLiteral("Timeout, process will terminate if the single "
                                                   "command will exceeds the specified duration"));
    EXPECT_EQ(option.valueName(), QStringLiteral("seconds"));
    EXPECT_EQ(option.defaultValues(), QStringList{"-1"});
}

TEST(TimeoutRequestTest, DefaultRequestHasNoWrappedRequestAndNoLimit) {
    const TimeoutRequest request;

    EXPECT_EQ(request.request, nullptr);
    EXPECT_FALSE(request.timeout.has_value());
}

TEST(TimeoutRequestTest, MoveConstructionLeavesSourceWithoutWrappedRequestAndKeepsItsLimit) {
    const auto wrapped = probe(1);
    TimeoutRequest source = limited(wrapped, 30);

    const TimeoutRequest target(std::move(source));

    EXPECT_EQ(target.request, wrapped);
    EXPECT_EQ(target.timeout, 30);
    EXPECT_EQ(source.request, nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(source.timeout, 30);
}

TEST(TimeoutRequestTest, MoveAssignmentLeavesSourceWithoutWrappedRequestAndKeepsItsLimit) {
    const auto wrapped = probe(1);
    TimeoutRequest source = limited(wrapped, 30);
    TimeoutRequest target = limited(probe(2), 5);

    target = std::move(source);

    EXPECT_EQ(target.request, wrapped);
    EXPECT_EQ(target.timeout, 30);
    EXPECT_EQ(source.request, nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(source.timeout, 30);
}

TEST(TimeoutRequestTest, CopiesShareTheWrappedRequest) {
    const auto wrapped = probe(1);
    const TimeoutRequest source = limited(wrapped, 30);

    const TimeoutRequest constructed(source);
    TimeoutRequest assigned;
    assigned = source;

    EXPECT_EQ(constructed.request, wrapped);
    EXPECT_EQ(assigned.request, wrapped);
    EXPECT_EQ(source.request, wrapped);
    EXPECT_EQ(constructed.timeout, 30);
    EXPECT_EQ(assigned.timeout, 30);
    EXPECT_EQ(wrapped.use_count(), 4);
}

TEST(TimeoutRequestTest, SerializerWrapsTheWrappedRequestsSerializer) {
    const TimeoutRequest request = limited(probe(3), 7);

    const auto serializer = request.serializer();

    ASSERT_NE(dynamic_cast<TimeoutRequestSerializer*>(serializer.get()), nullptr);
    EXPECT_EQ(serializer->toCli(request), (QStringList{"--level=3", "--timeout=7"}));
    EXPECT_EQ(serializer->toJson(request), (nlohmann::json{{"level", 3}, {"timeout", 7}}));
    const auto loaded = serializer->loadFromCli({"--level=4", "--timeout=8"});
    const auto& typed = dynamic_cast<const TimeoutRequest&>(*loaded);
    EXPECT_EQ(dynamic_cast<const ProbeRequest&>(*typed.request).level, 4);
    EXPECT_EQ(typed.timeout, 8);
}

TEST(TimeoutRequestTest, SerializerWithoutWrappedRequestWritesTheLimitAlone) {
    const TimeoutRequest request = limited(nullptr, 7);

    const auto serializer = request.serializer();

    ASSERT_NE(dynamic_cast<TimeoutRequestSerializer*>(serializer.get()), nullptr);
    EXPECT_EQ(serializer->toCli(request), QStringList{"--timeout=7"});
    EXPECT_EQ(serializer->toJson(request), (nlohmann::json{{"timeout", 7}}));
}

TEST(TimeoutRequestTest, EachSerializerCallGivesANewObject) {
    const TimeoutRequest request = limited(probe(3), 7);

    const auto first = request.serializer();
    const auto second = request.serializer();

    EXPECT_NE(first.get(), second.get());
}

TEST(TimeoutRequestTest, FieldVisitorHandsOverTheLimitAlone) {
    TimeoutRequest request = limited(probe(3), 7);

    CLI::OptionDumper dumper;
    dumper << request;

    ASSERT_EQ(dumper.options.size(), 1);
    EXPECT_EQ(dumper.options.constFirst().names(), (QStringList{"timeout", "t"}));
}

TEST(TimeoutRequestTest, FieldVisitorValidatesOnceFromCommandLine) {
    DefaultRequestSerializer<CountedTimeoutRequest> serializer;

    const auto loaded = serializer.loadFromCli({"--timeout=3"});

    const auto& typed = dynamic_cast<const CountedTimeoutRequest&>(*loaded);
    EXPECT_EQ(typed.timeout, 3);
    EXPECT_EQ(typed.validations, 1);
}

TEST(TimeoutRequestTest, FieldVisitorValidatesTwiceFromJson) {
    DefaultRequestSerializer<CountedTimeoutRequest> serializer;

    const auto loaded = serializer.loadFromJson({{"timeout", 3}});

    const auto& typed = dynamic_cast<const CountedTimeoutRequest&>(*loaded);
    EXPECT_EQ(typed.timeout, 3);
    EXPECT_EQ(typed.validations, 2);
}

TEST(TimeoutRequestTest, AnyIntegerIsAcceptedAsLimit) {
    DefaultRequestSerializer<TimeoutRequest> serializer;

    for (const int timeout : {0, -1, -30, 2147483647}) {
        const auto loaded = serializer.loadFromJson({{"timeout", timeout}});
        EXPECT_EQ(dynamic_cast<const TimeoutRequest&>(*loaded).timeout, timeout);
    }
    const auto negative = serializer.loadFromCli({"--timeout=-5"});
    EXPECT_EQ(dynamic_cast<const TimeoutRequest&>(*negative).timeout, -5);
}

} // namespace
} // namespace EditorService
