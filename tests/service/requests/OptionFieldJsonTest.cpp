#include "service/requests/OptionFieldJson.h"

#include "tests/service/requests/SampleRequest.h"
#include "tests/support/FailedWith.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::LimitRequest;
using EditorService::Testing::SampleRequest;
using Serialize::Json::iarchive;
using Serialize::Json::oarchive;
namespace Config = Serialize::Json::Config;

namespace {

SampleRequest sample(const std::function<void(SampleRequest&)>& edit) {
    SampleRequest request;
    edit(request);
    return request;
}

nlohmann::json write(const SampleRequest& request, int flags) {
    nlohmann::json document;
    oarchive archive(document, flags);
    archive << request;
    return document;
}

SampleRequest read(const nlohmann::json& document, int flags) {
    SampleRequest request;
    iarchive archive(document, flags);
    archive >> request;
    return request;
}

TEST(OptionFieldJsonTest, WritesAFlatObjectKeyedByTheFirstNames) {
    const SampleRequest request = sample([](SampleRequest& r) {
        r.limit = 5;
        r.count = 2;
        r.verbose = true;
        r.label = QString::fromUtf8("Grüße");
        r.size = 9000000000LL;
    });

    EXPECT_EQ(write(request, 0), nlohmann::json::parse(R"({"limit": 5, "count": 2, "verbose": true,
        "label": "Grüße", "size": 9000000000})"));
}

TEST(OptionFieldJsonTest, EmptyOptionalsAreLeftOutWithoutTheFlag) {
    EXPECT_EQ(write(SampleRequest(), 0),
              nlohmann::json::parse(R"({"count": 3, "verbose": false})"));
}

TEST(OptionFieldJsonTest, EmptyOptionalsAreNullWithTheFlag) {
    EXPECT_EQ(write(SampleRequest(), Config::ExplicitOptionalNulls),
              nlohmann::json::parse(
                  R"({"limit": null, "count": 3, "verbose": false, "label": null, "size": null})"));
}

TEST(OptionFieldJsonTest, RequestThatWritesNothingLeavesTheDocumentNull) {
    nlohmann::json document;
    oarchive archive(document, 0);
    archive << LimitRequest();

    EXPECT_TRUE(document.is_null());
}

TEST(OptionFieldJsonTest, EmptyOptionalOnANullHeadWithTheFlagMakesAnObject) {
    nlohmann::json document;
    oarchive archive(document, Config::ExplicitOptionalNulls);
    archive << LimitRequest();

    EXPECT_EQ(document, nlohmann::json::parse(R"({"limit": null})"));
}

TEST(OptionFieldJsonTest, WritesIntoTheCurrentHead) {
    nlohmann::json document = nlohmann::json::parse(R"({"other": 1, "nested": {"keep": true}})");
    LimitRequest request;
    request.limit = 4;
    oarchive archive(document, 0);

    archive.enter(document["nested"]);
    archive << request;
    archive.leave();

    EXPECT_EQ(document,
              nlohmann::json::parse(R"({"other": 1, "nested": {"keep": true, "limit": 4}})"));
}

struct ReadRow {
    const char* name;
    const char* document;
    int flags;
    std::function<void(SampleRequest&)> expected;
};

void PrintTo(const ReadRow& row, std::ostream* out) {
    *out << row.name;
}

class OptionFieldJsonReadTest : public testing::TestWithParam<ReadRow> {};

TEST_P(OptionFieldJsonReadTest, ReadsTheFields) {
    const SampleRequest loaded = read(nlohmann::json::parse(GetParam().document), GetParam().flags);

    EXPECT_EQ(loaded, sample(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Documents, OptionFieldJsonReadTest,
    testing::Values(
        ReadRow{"MissingKeysWithoutTheFlag", "{}", 0, [](SampleRequest&) {}},
        ReadRow{"NullKeysWithoutTheFlag", R"({"limit": null, "label": null, "size": null})", 0,
                [](SampleRequest&) {}},
        ReadRow{"NullKeysWithTheFlag", R"({"limit": null, "label": null, "size": null})",
                Config::ExplicitOptionalNulls, [](SampleRequest&) {}},
        ReadRow{"EveryField",
                R"({"limit": 5, "count": 2, "verbose": true, "label": "a b", "size": 9000000000})",
                0,
                [](SampleRequest& r) {
                    r.limit = 5;
                    r.count = 2;
                    r.verbose = true;
                    r.label = QStringLiteral("a b");
                    r.size = 9000000000LL;
                }},
        ReadRow{"ZeroIsAValue", R"({"limit": 0})", 0, [](SampleRequest& r) { r.limit = 0; }},
        ReadRow{"FloatingPointTruncates", R"({"limit": 2.9, "size": -3.5})", 0,
                [](SampleRequest& r) {
                    r.limit = 2;
                    r.size = -3;
                }},
        ReadRow{"ExtraKeysAreNotLookedAt",
                R"({"limit": 1, "other": {"deep": [1, 2]}, "l": "alias keys are extra too"})", 0,
                [](SampleRequest& r) { r.limit = 1; }},
        ReadRow{"NotAnObjectWithoutTheFlag", "[1, 2]", 0, [](SampleRequest&) {}},
        ReadRow{"NullDocumentWithoutTheFlag", "null", 0, [](SampleRequest&) {}},
        ReadRow{"StringDocumentWithoutTheFlag", R"("limit")", 0, [](SampleRequest&) {}},
        ReadRow{"EmptyLabel", R"({"label": ""})", 0, [](SampleRequest& r) { r.label = QString(); }},
        ReadRow{"LabelWithNul", R"({"label": "a\u0000b"})", 0,
                [](SampleRequest& r) { r.label = QString::fromLatin1("a\0b", 3); }},
        ReadRow{"StringThatRefersToNothing", R"({"$ref": "x", "limit": 3})", 0,
                [](SampleRequest& r) { r.limit = 3; }},
        ReadRow{"SelfReference", R"({"$id": 1, "$ref": 1, "limit": 4})", 0,
                [](SampleRequest& r) { r.limit = 4; }}),
    [](const testing::TestParamInfo<ReadRow>& info) { return std::string(info.param.name); });

struct FailureRow {
    const char* name;
    const char* document;
    int flags;
    testing::Matcher<std::exception_ptr> check;
};

void PrintTo(const FailureRow& row, std::ostream* out) {
    *out << row.name;
}

template <class E> testing::Matcher<std::exception_ptr> is(std::string what) {
    return FailedWith<E>(std::move(what));
}

class OptionFieldJsonFailureTest : public testing::TestWithParam<FailureRow> {};

TEST_P(OptionFieldJsonFailureTest, ThrowsTheDocumentedException) {
    const auto document = nlohmann::json::parse(GetParam().document);
    EXPECT_THAT(failureOf([&] { read(document, GetParam().flags); }), GetParam().check);
}

INSTANTIATE_TEST_SUITE_P(
    Documents, OptionFieldJsonFailureTest,
    testing::Values(
        FailureRow{"MissingKeyWithTheFlag", R"({"limit": 1, "label": null})",
                   Config::ExplicitOptionalNulls,
                   is<std::runtime_error>("Optional field is required to be at least null, due "
                                          "to Config::ExplicitOptionalNulls")},
        FailureRow{"NotAnObjectWithTheFlag", "null", Config::ExplicitOptionalNulls,
                   is<std::runtime_error>("Optional field is required to be at least null, due "
                                          "to Config::ExplicitOptionalNulls")},
        FailureRow{"StringForInt", R"({"limit": "5"})", 0,
                   is<nlohmann::json::type_error>(
                       "[json.exception.type_error.302] type must be number, but is string")},
        FailureRow{"BooleanForInt", R"({"limit": true})", 0,
                   is<nlohmann::json::type_error>(
                       "[json.exception.type_error.302] type must be number, but is boolean")},
        FailureRow{"NullForPlainInt", R"({"count": null})", 0,
                   is<nlohmann::json::type_error>(
                       "[json.exception.type_error.302] type must be number, but is null")},
        FailureRow{"IntOverflow", R"({"limit": 3000000000})", 0,
                   is<nlohmann::json::out_of_range>("[json.exception.out_of_range.406] number "
                                                    "overflow converting '3000000000' to int")},
        FailureRow{"LongLongOverflow", R"({"size": 1e19})", 0,
                   is<nlohmann::json::out_of_range>(
                       "[json.exception.out_of_range.406] number overflow converting "
                       "'1e+19' to long long")},
        FailureRow{"NumberForBool", R"({"verbose": 1})", 0,
                   is<nlohmann::json::type_error>(
                       "[json.exception.type_error.302] type must be boolean, but is number")},
        FailureRow{"NumberForLabel", R"({"label": 5})", 0,
                   is<nlohmann::json::type_error>(
                       "[json.exception.type_error.302] type must be string, but is number")},
        FailureRow{"UnknownReference", R"({"$ref": 3, "limit": 1})", 0,
                   is<std::out_of_range>("invalid map<K, T> key")},
        FailureRow{"UnknownReferenceWithTheFlag", R"({"$ref": 0})", Config::ExplicitOptionalNulls,
                   is<std::out_of_range>("invalid map<K, T> key")}),
    [](const testing::TestParamInfo<FailureRow>& info) { return std::string(info.param.name); });

TEST(OptionFieldJsonTest, NullAndMissingAgreeWithoutTheFlagAndDifferWithIt) {
    const auto withNull =
        nlohmann::json::parse(R"({"limit": null, "count": 3, "label": null, "size": null})");
    const auto missing = nlohmann::json::parse(R"({"count": 3})");

    EXPECT_EQ(read(withNull, 0), read(missing, 0));
    EXPECT_EQ(read(withNull, Config::ExplicitOptionalNulls), read(missing, 0));
    EXPECT_THAT([&] { read(missing, Config::ExplicitOptionalNulls); },
                FailedWith<std::runtime_error>("Optional field is required to be at least null, "
                                               "due to Config::ExplicitOptionalNulls"));
}

TEST(OptionFieldJsonTest, FieldOfAReferringHeadIsReadFromTheReferredValue) {
    const auto document =
        nlohmann::json::parse(R"({"first": {"$id": 5, "limit": 4}, "second": {"$ref": 5}})");
    iarchive archive(document, 0);
    LimitRequest first;
    LimitRequest second;

    archive.enter(document["first"]);
    archive >> first;
    archive.leave();
    archive.enter(document["second"]);
    archive >> second;

    EXPECT_EQ(first.limit, 4);
    EXPECT_EQ(second.limit, 4);
    EXPECT_EQ(&archive.headRef(), &document["second"]);
}

TEST(OptionFieldJsonTest, ReferenceToAValueNotYetEnteredIsUnknown) {
    const auto document =
        nlohmann::json::parse(R"({"first": {"$ref": 5}, "second": {"$id": 5, "limit": 4}})");
    iarchive archive(document, 0);
    LimitRequest request;
    archive.enter(document["first"]);

    EXPECT_THAT([&] { archive >> request; },
                FailedWith<std::out_of_range>("invalid map<K, T> key"));
}

struct RoundTripRow {
    const char* name;
    int flags;
    std::function<void(SampleRequest&)> edit;
};

void PrintTo(const RoundTripRow& row, std::ostream* out) {
    *out << row.name;
}

class OptionFieldJsonRoundTripTest : public testing::TestWithParam<RoundTripRow> {};

TEST_P(OptionFieldJsonRoundTripTest, ReadingWhatWasWrittenGivesEqualFields) {
    const SampleRequest original = sample(GetParam().edit);
    const nlohmann::json document = write(original, GetParam().flags);

    EXPECT_EQ(read(document, GetParam().flags), original);
    EXPECT_EQ(read(nlohmann::json::parse(document.dump()), GetParam().flags), original);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, OptionFieldJsonRoundTripTest,
    testing::Values(RoundTripRow{"EmptyWithoutTheFlag", 0, [](SampleRequest&) {}},
                    RoundTripRow{"EmptyWithTheFlag", Config::ExplicitOptionalNulls,
                                 [](SampleRequest&) {}},
                    RoundTripRow{"EveryField", 0,
                                 [](SampleRequest& r) {
                                     r.limit = -1;
                                     r.count = 2147483647;
                                     r.verbose = true;
                                     r.label = QString::fromUtf8("a\0b Grüße ✓ 😀", 20);
                                     r.size = -9223372036854775807LL - 1;
                                 }},
                    RoundTripRow{"EveryFieldWithTheFlag", Config::ExplicitOptionalNulls,
                                 [](SampleRequest& r) {
                                     r.limit = 0;
                                     r.label = QString();
                                 }}),
    [](const testing::TestParamInfo<RoundTripRow>& info) { return std::string(info.param.name); });

} // namespace
