#include "platform/serialize/JsonIArchive.h"

#include "tests/platform/serialize/JsonTestTypes.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Serialize::Json::iarchive;
using SerializeTesting::Point;

namespace {

TEST(JsonIArchiveTest, IsALoadingBoostArchive) {
    static_assert(iarchive::is_loading::value);
    static_assert(!iarchive::is_saving::value);
    static_assert(std::is_base_of_v<boost::archive::detail::basic_iarchive, iarchive>);
    SUCCEED();
}

TEST(JsonIArchiveTest, HeadIsTheRootAtFirst) {
    const nlohmann::json document = nlohmann::json::parse(R"({"x": 1})");
    iarchive archive(document, 0);

    EXPECT_EQ(&archive.headRef(), &document);
}

TEST(JsonIArchiveTest, KeepsItsFlags) {
    const nlohmann::json document;

    EXPECT_EQ(iarchive(document, 0).flags(), 0);
    EXPECT_EQ(iarchive(document, 5).flags(), 5);
}

TEST(JsonIArchiveTest, EnterAndLeaveMoveTheHead) {
    const nlohmann::json document = nlohmann::json::parse(R"({"a": {"b": [1]}})");
    iarchive archive(document, 0);

    archive.enter(document["a"]);
    archive.enter(document["a"]["b"]);
    EXPECT_EQ(&archive.headRef(), &document["a"]["b"]);
    archive.leave();
    EXPECT_EQ(&archive.headRef(), &document["a"]);
    archive.leave();
    EXPECT_EQ(&archive.headRef(), &document);
}

TEST(JsonIArchiveTest, ValueWithoutANameIsReadFromTheHeadByItsVisitor) {
    const nlohmann::json document = nlohmann::json::parse(R"({"x": 3, "y": -4, "z": 0})");
    iarchive archive(document, 0);
    Point point;

    archive >> point;

    EXPECT_EQ(point.x, 3);
    EXPECT_EQ(point.y, -4);
    EXPECT_EQ(point.visits, 1);
    EXPECT_EQ(point.lastVersion, 0u);
}

TEST(JsonIArchiveTest, AmpersandReadsLikeTheShiftOperator) {
    const nlohmann::json document = nlohmann::json::parse(R"({"inner": {"x": 1, "y": 2}})");
    iarchive archive(document, 0);
    Point point;

    archive.enter(document["inner"]);
    // clang-format off
    archive & point;
    // clang-format on

    EXPECT_EQ(point.x, 1);
    EXPECT_EQ(point.y, 2);
}

TEST(JsonIArchiveTest, FailuresOfTheValuesPassThrough) {
    const nlohmann::json document = nlohmann::json::parse(R"({"x": "three", "y": 1})");
    iarchive archive(document, 0);
    Point point;

    EXPECT_THAT([&] { archive >> point; },
                FailedWith<nlohmann::json::type_error>(
                    "[json.exception.type_error.302] type must be number, but is string"));
}

TEST(JsonIArchiveTest, RootWithAnIdIsRegistered) {
    const nlohmann::json document = nlohmann::json::parse(R"({"$id": 4})");
    iarchive archive(document, 0);

    EXPECT_EQ(&archive.referencedValue(4), &document);
}

TEST(JsonIArchiveTest, EnteredValueWithAnIdIsRegistered) {
    const nlohmann::json document =
        nlohmann::json::parse(R"({"a": {"$id": 1}, "b": {"$id": 2}, "c": {"$id": 1}})");
    iarchive archive(document, 0);

    archive.enter(document["a"]);
    archive.leave();
    EXPECT_EQ(&archive.referencedValue(1), &document["a"]);
    EXPECT_THAT([&] { archive.referencedValue(2); },
                FailedWith<std::out_of_range>("invalid map<K, T> key"));

    archive.enter(document["c"]);
    archive.leave();
    EXPECT_EQ(&archive.referencedValue(1), &document["c"]);
}

TEST(JsonIArchiveTest, UnknownIdRaisesOutOfRange) {
    const nlohmann::json document = nlohmann::json::parse(R"({"$id": "1", "x": 1})");
    iarchive archive(document, 0);

    EXPECT_THAT([&] { archive.referencedValue(1); },
                FailedWith<std::out_of_range>("invalid map<K, T> key"));
    EXPECT_THAT([&] { archive.referencedValue(0); },
                FailedWith<std::out_of_range>("invalid map<K, T> key"));
}

} // namespace
