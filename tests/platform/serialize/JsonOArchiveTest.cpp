#include "platform/serialize/JsonOArchive.h"

#include "tests/platform/serialize/JsonTestTypes.h"

#include <gtest/gtest.h>

using Serialize::Json::oarchive;
using SerializeTesting::Point;

namespace {

TEST(JsonOArchiveTest, IsASavingBoostArchive) {
    static_assert(oarchive::is_saving::value);
    static_assert(!oarchive::is_loading::value);
    static_assert(std::is_base_of_v<boost::archive::detail::basic_oarchive, oarchive>);
    SUCCEED();
}

TEST(JsonOArchiveTest, HeadIsTheRootAtFirst) {
    nlohmann::json document;
    oarchive archive(document, 0);

    EXPECT_EQ(&archive.headRef(), &document);
}

TEST(JsonOArchiveTest, KeepsItsFlags) {
    nlohmann::json document;

    EXPECT_EQ(oarchive(document, 0).flags(), 0);
    EXPECT_EQ(oarchive(document, 1).flags(), 1);
}

TEST(JsonOArchiveTest, ValueWithoutANameIsWrittenIntoTheHeadByItsVisitor) {
    nlohmann::json document;
    Point point;
    point.x = 3;
    point.y = -4;
    oarchive archive(document, 0);

    archive << point;

    EXPECT_EQ(document, nlohmann::json::parse(R"({"x": 3, "y": -4})"));
}

TEST(JsonOArchiveTest, EnterAndLeaveMoveTheHead) {
    nlohmann::json document = nlohmann::json::object();
    nlohmann::json inner;
    Point point;
    point.x = 1;
    oarchive archive(document, 0);

    archive.enter(inner);
    // clang-format off
    archive & point;
    // clang-format on
    archive.leave();
    archive.headRef()["inner"] = std::move(inner);

    EXPECT_EQ(document, nlohmann::json::parse(R"({"inner": {"x": 1, "y": 0}})"));
}

TEST(JsonOArchiveTest, WritesNoBookkeepingOfItsOwn) {
    nlohmann::json document;
    { oarchive archive(document, 0); }

    EXPECT_TRUE(document.is_null());
}

} // namespace
