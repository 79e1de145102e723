#include "platform/foundation/Version.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::Core::Version;

namespace {

struct ValidRow {
    const char* name;
    const char* text;
    Version expected;
};

// Names the row in test listings instead of dumping its bytes.
void PrintTo(const ValidRow& row, std::ostream* out) {
    *out << row.name;
}

class VersionValidTextTest : public testing::TestWithParam<ValidRow> {};

TEST_P(VersionValidTextTest, ReadsEveryPartGiven) {
    EXPECT_EQ(Version::FromString(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, VersionValidTextTest,
    testing::Values(ValidRow{"MajorMinor", "2.5", {2, 5, 0, 0}},
                    ValidRow{"MajorMinorPatch", "1.0.0", {1, 0, 0, 0}},
                    ValidRow{"WithBuild", "3.14.15.926", {3, 14, 15, 926}},
                    ValidRow{"Zeros", "0.0.0.0", {0, 0, 0, 0}},
                    ValidRow{"NineDigits", "999999999.1", {999999999, 1, 0, 0}}),
    [](const testing::TestParamInfo<ValidRow>& info) { return info.param.name; });

struct InvalidRow {
    const char* name;
    const char* text;
};

// Names the row in test listings instead of dumping its bytes.
void PrintTo(const InvalidRow& row, std::ostream* out) {
    *out << row.name;
}

class VersionInvalidTextTest : public testing::TestWithParam<InvalidRow> {};

TEST_P(VersionInvalidTextTest, ThrowsQuotingTheText) {
    EXPECT_THAT([&] { Version::FromString(GetParam().text); },
                FailedWith<std::invalid_argument>(std::string("Invalid version: \"")
                                                  + GetParam().text + "\""));
}

INSTANTIATE_TEST_SUITE_P(
    Forms, VersionInvalidTextTest,
    testing::Values(InvalidRow{"Empty", ""}, InvalidRow{"MajorOnly", "1"},
                    InvalidRow{"TrailingDot", "1."}, InvalidRow{"Letters", "1.x"},
                    InvalidRow{"FiveParts", "1.2.3.4.5"}, InvalidRow{"LeadingSpace", " 1.2"},
                    InvalidRow{"Negative", "-1.2"}, InvalidRow{"TenDigits", "1234567890.0"}),
    [](const testing::TestParamInfo<InvalidRow>& info) { return info.param.name; });

} // namespace

TEST(VersionTest, DiffersWhenAnyPartDiffers) {
    EXPECT_EQ((Version{1, 2, 3, 4}), (Version{1, 2, 3, 4}));
    EXPECT_NE((Version{1, 2, 3, 4}), (Version{1, 2, 3, 5}));
    EXPECT_NE((Version{1, 2, 3, 4}), (Version{0, 2, 3, 4}));
}
