#include "platform/serialize/JsonReference.h"

#include <gtest/gtest.h>
#include <ostream>

using Serialize::Json::getObjectId;
using Serialize::Json::getReferenceObjectId;

namespace {

struct IdRow {
    const char* name;
    const char* document;
    std::optional<std::uint64_t> reference;
    std::optional<std::uint64_t> id;
};

void PrintTo(const IdRow& row, std::ostream* out) {
    *out << row.name;
}

class JsonReferenceTest : public testing::TestWithParam<IdRow> {};

TEST_P(JsonReferenceTest, FindsTheIdsAValueCarries) {
    const auto value = nlohmann::json::parse(GetParam().document);

    EXPECT_EQ(getReferenceObjectId(value), GetParam().reference);
    EXPECT_EQ(getObjectId(value), GetParam().id);
}

INSTANTIATE_TEST_SUITE_P(
    Values, JsonReferenceTest,
    testing::Values(IdRow{"Reference", R"({"$ref": 7})", 7, std::nullopt},
                    IdRow{"Id", R"({"$id": 7, "x": 1})", std::nullopt, 7},
                    IdRow{"Both", R"({"$id": 1, "$ref": 2})", 2, 1},
                    IdRow{"Zero", R"({"$ref": 0, "$id": 0})", 0, 0},
                    IdRow{"Largest", R"({"$ref": 18446744073709551615})", 18446744073709551615ULL,
                          std::nullopt},
                    IdRow{"Negative", R"({"$ref": -1, "$id": -1})", std::nullopt, std::nullopt},
                    IdRow{"Text", R"({"$ref": "7", "$id": "7"})", std::nullopt, std::nullopt},
                    IdRow{"FloatingPoint", R"({"$ref": 7.0})", std::nullopt, std::nullopt},
                    IdRow{"Null", R"({"$ref": null})", std::nullopt, std::nullopt},
                    IdRow{"NoObject", R"([{"$ref": 7}])", std::nullopt, std::nullopt},
                    IdRow{"Number", "7", std::nullopt, std::nullopt},
                    IdRow{"NestedOnly", R"({"a": {"$ref": 7}})", std::nullopt, std::nullopt}),
    [](const testing::TestParamInfo<IdRow>& info) { return std::string(info.param.name); });

} // namespace
