#include "platform/foundation/VersionToString.h"

#include "platform/foundation/CallLog.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::Core::Version;
using Velmor::Util::VersionToString;
using Velmor::Util::VersionToStringDetail;

namespace {

struct Row {
    const char* name;
    VersionToStringDetail detail;
    const char* separator;
    const char* expected;
};

// Names the row in test listings instead of dumping its bytes.
void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

class VersionToStringDetailTest : public testing::TestWithParam<Row> {};

TEST_P(VersionToStringDetailTest, WritesThePartsTheDetailAsksFor) {
    const Version version{1, 4, 2, 118};
    EXPECT_EQ(VersionToString(version, GetParam().detail, GetParam().separator),
              GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Details, VersionToStringDetailTest,
    testing::Values(Row{"MajorMinorPatch", VersionToStringDetail::MajorMinorPatch, ".", "1.4.2"},
                    Row{"MajorMinor", VersionToStringDetail::MajorMinor, ".", "1.4"},
                    Row{"Major", VersionToStringDetail::Major, ".", "1"},
                    Row{"Full", VersionToStringDetail::Full, ".", "1.4.2.118"},
                    Row{"OtherSeparator", VersionToStringDetail::Full, "_", "1_4_2_118"},
                    Row{"LongSeparator", VersionToStringDetail::MajorMinor, " - ", "1 - 4"},
                    Row{"NoSeparator", VersionToStringDetail::MajorMinorPatch, "", "142"}),
    [](const testing::TestParamInfo<Row>& info) { return info.param.name; });

} // namespace

TEST(VersionToStringTest, DetailZeroIsMajorMinorPatch) {
    static_assert(static_cast<int>(VersionToStringDetail::MajorMinorPatch) == 0);
    EXPECT_EQ(VersionToString(Version{1, 0, 0, 0}, static_cast<VersionToStringDetail>(0), "."),
              "1.0.0");
}

TEST(VersionToStringTest, ThrowsForAnUnknownDetail) {
    EXPECT_THAT(
        [&] {
            VersionToString(Version{1, 0, 0, 0}, static_cast<VersionToStringDetail>(7), ".");
        },
        FailedWith<std::invalid_argument>("Unknown version detail: 7"));
}

TEST(VersionToStringTest, IsRecorded) {
    Velmor::Testing::CallLog::clear();
    VersionToString(Version{1, 0, 0, 0}, VersionToStringDetail::MajorMinorPatch, ".");
    EXPECT_EQ(Velmor::Testing::CallLog::entries(),
              std::vector<std::string>{"Util::VersionToString"});
}
