#include "platform/project/JsonNode.h"
#include "platform/project/ProjectError.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using Project::JsonNode;
using Project::ProjectError;

namespace {

const nlohmann::json document = nlohmann::json::parse(
    R"({"clips": [{"in_ms": "2000", "fit": "Zoom", "out_ms": 2.5, "size": -3,
                  "color": "#12345", "long": "abcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz"}]})");

JsonNode clip() {
    return JsonNode(document, "", "p.json").at("clips").items().at(0);
}

TEST(JsonNodeTest, PlacesNameKeysAndIndices) {
    EXPECT_EQ(clip().place(), "clips[0]");
    EXPECT_EQ(clip().at("fit").place(), "clips[0].fit");
}

TEST(JsonNodeTest, AWrongTypeSaysWhatWasExpectedAndFound) {
    EXPECT_THAT([] { clip().at("in_ms").milliseconds(); },
                FailedWith<ProjectError>("p.json: clips[0].in_ms: expected a whole number of "
                                         "milliseconds, 0 or more, found \"2000\""));
    EXPECT_THAT([] { clip().at("out_ms").milliseconds(1); },
                FailedWith<ProjectError>("p.json: clips[0].out_ms: expected a whole number of "
                                         "milliseconds above 0, found 2.5"));
    EXPECT_THAT([] { clip().at("size").wholeNumber(1, 9, "a size"); },
                FailedWith<ProjectError>("p.json: clips[0].size: expected a size, found -3"));
    EXPECT_THAT([] { clip().at("color").colour(); },
                FailedWith<ProjectError>("p.json: clips[0].color: expected a colour \"#rrggbb\" "
                                         "or \"#rrggbbaa\", found \"#12345\""));
    EXPECT_THAT([] { clip().items(); },
                FailedWith<ProjectError>("p.json: clips[0]: expected an array, found "
                                         "{\"color\":\"#12345\",\"fit\":\"Zoom\",\"in_ms..."));
}

TEST(JsonNodeTest, LongValuesAreCutShort) {
    EXPECT_THAT([] { clip().at("long").boolean(); },
                FailedWith<ProjectError>("p.json: clips[0].long: expected true or false, found "
                                         "\"abcdefghijklmnopqrstuvwxyzabcdefghij..."));
}

TEST(JsonNodeTest, AnUnknownKeyListsTheKnownOnes) {
    EXPECT_THAT(
        [] {
            clip().allowOnly({"in_ms", "out_ms", "fit", "size", "color"});
        },
        FailedWith<ProjectError>("p.json: unknown key \"long\" at clips[0].long; "
                                 "available: in_ms, out_ms, fit, size, color"));
}

TEST(JsonNodeTest, AnUnknownNameListsTheKnownOnes) {
    EXPECT_THAT(
        [] {
            clip().at("fit").choice({"Fit", "Fill"}, "fit");
        },
        FailedWith<ProjectError>("p.json: unknown fit \"Zoom\" at clips[0].fit; "
                                 "available: Fit, Fill"));
}

TEST(JsonNodeTest, AMissingKeyIsNamed) {
    EXPECT_THAT([] { clip().at("source"); },
                FailedWith<ProjectError>("p.json: clips[0]: \"source\" is missing"));
    EXPECT_FALSE(clip().find("source"));
    EXPECT_TRUE(clip().has("fit"));
}

} // namespace
