#include "service/launcher/LookAndFeelManagerStub.h"

#include "tests/platform/editorutil/VirtualSlot.h"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>

using EditorService::Testing::virtualSlot;

namespace {

const std::list<std::string> english{"en_US"};
const std::list<std::string> defaultLook{"Default"};

// The stub's whole observable state, compared before and after each operation.
void expectFixedFields(const LookAndFeelManagerStub& stub) {
    EXPECT_EQ(stub.GetCurrentLocale(), "en_US");
    EXPECT_EQ(stub.GetAvailableLocales(), english);
    EXPECT_EQ(stub.GetCurrentLook(), "Default");
    EXPECT_EQ(stub.GetAvailableLooks(), defaultLook);
}

struct BehaviourRow {
    const char* name;
    long slot;
    std::function<long()> slotOf;
    std::function<void(LookAndFeelManagerStub&)> check;
};

// Names the row in test listings instead of dumping its bytes.
void PrintTo(const BehaviourRow& row, std::ostream* out) {
    *out << row.name;
}

class LookAndFeelManagerStubOperationTest : public testing::TestWithParam<BehaviourRow> {};

TEST_P(LookAndFeelManagerStubOperationTest, OperationSitsInItsSlot) {
    if (!EditorService::Testing::virtualSlotsAreReadable())
        GTEST_SKIP() << "virtual slots are not readable with this ABI";
    EXPECT_EQ(GetParam().slotOf(), GetParam().slot);
}

TEST_P(LookAndFeelManagerStubOperationTest, OperationBehavesAsItsKindAndChangesNoField) {
    LookAndFeelManagerStub stub;
    GetParam().check(stub);
    expectFixedFields(stub);
}

template <class Member> std::function<long()> slotOf(Member member) {
    return [member] { return virtualSlot(member); };
}

// One row for each operation after the destructor, in the order of the interface's slots.
INSTANTIATE_TEST_SUITE_P(
    Operations, LookAndFeelManagerStubOperationTest,
    testing::Values(
        BehaviourRow{"Initialize", 2, slotOf(&LookAndFeelManagerStub::Initialize),
                     [](LookAndFeelManagerStub& stub) { stub.Initialize(); }},
        BehaviourRow{"GetCurrentLocale", 3, slotOf(&LookAndFeelManagerStub::GetCurrentLocale),
                     [](LookAndFeelManagerStub& stub) {
                         EXPECT_EQ(stub.GetCurrentLocale(), "en_US");
                         EXPECT_EQ(&stub.GetCurrentLocale(), &stub.GetCurrentLocale());
                     }},
        BehaviourRow{"GetAvailableLocales", 4, slotOf(&LookAndFeelManagerStub::GetAvailableLocales),
                     [](LookAndFeelManagerStub& stub) {
                         EXPECT_EQ(stub.GetAvailableLocales(), english);
                         EXPECT_EQ(&stub.GetAvailableLocales(), &stub.GetAvailableLocales());
                     }},
        BehaviourRow{"GetAvailableLooks", 5, slotOf(&LookAndFeelManagerStub::GetAvailableLooks),
                     [](LookAndFeelManagerStub& stub) {
                         EXPECT_EQ(stub.GetAvailableLooks(), defaultLook);
                         EXPECT_EQ(&stub.GetAvailableLooks(), &stub.GetAvailableLooks());
                     }},
        BehaviourRow{"SetCurrentLocale", 6, slotOf(&LookAndFeelManagerStub::SetCurrentLocale),
                     [](LookAndFeelManagerStub& stub) { stub.SetCurrentLocale("de_DE"); }},
        BehaviourRow{"SetCurrentLook", 7, slotOf(&LookAndFeelManagerStub::SetCurrentLook),
                     [](LookAndFeelManagerStub& stub) { stub.SetCurrentLook("Dark"); }},
        BehaviourRow{"GetCurrentLook", 8, slotOf(&LookAndFeelManagerStub::GetCurrentLook),
                     [](LookAndFeelManagerStub& stub) {
                         EXPECT_EQ(stub.GetCurrentLook(), "Default");
                         EXPECT_EQ(&stub.GetCurrentLook(), &stub.GetCurrentLook());
                     }},
        BehaviourRow{"GetDefaultLook", 9, slotOf(&LookAndFeelManagerStub::GetDefaultLook),
                     [](LookAndFeelManagerStub& stub) {
                         std::string look = stub.GetDefaultLook();
                         EXPECT_EQ(look, "Default");
                         look = "changed";
                         EXPECT_EQ(stub.GetCurrentLook(), "Default");
                     }},
        BehaviourRow{"ApplyLook", 10, slotOf(&LookAndFeelManagerStub::ApplyLook),
                     [](LookAndFeelManagerStub& stub) { stub.ApplyLook(); }},
        BehaviourRow{"GetStyleSheet", 11, slotOf(&LookAndFeelManagerStub::GetStyleSheet),
                     [](LookAndFeelManagerStub& stub) { EXPECT_EQ(stub.GetStyleSheet(), ""); }},
        BehaviourRow{"GetDefaultLocale", 12, slotOf(&LookAndFeelManagerStub::GetDefaultLocale),
                     [](LookAndFeelManagerStub& stub) {
                         std::string locale = stub.GetDefaultLocale();
                         EXPECT_EQ(locale, "en_US");
                         locale = "changed";
                         EXPECT_EQ(stub.GetCurrentLocale(), "en_US");
                     }},
        BehaviourRow{"ApplyLocale", 13, slotOf(&LookAndFeelManagerStub::ApplyLocale),
                     [](LookAndFeelManagerStub& stub) { stub.ApplyLocale(); }},
        BehaviourRow{"ReloadLooks", 14, slotOf(&LookAndFeelManagerStub::ReloadLooks),
                     [](LookAndFeelManagerStub& stub) { stub.ReloadLooks(); }}),
    [](const testing::TestParamInfo<BehaviourRow>& info) { return info.param.name; });

} // namespace

TEST(LookAndFeelManagerStubTest, FieldsAreFixedAtConstruction) {
    const LookAndFeelManagerStub stub;
    expectFixedFields(stub);
}

TEST(LookAndFeelManagerStubTest, ChangesAskedForThroughTheInterfaceChangeNothing) {
    LookAndFeelManagerStub stub;
    Velmor::App::ILookAndFeelManager& manager = stub;
    manager.Initialize();
    manager.SetCurrentLocale("fr_FR");
    manager.SetCurrentLook("Dark");
    manager.ApplyLook();
    manager.ApplyLocale();
    manager.ReloadLooks();
    expectFixedFields(stub);
    EXPECT_EQ(manager.GetDefaultLocale(), "en_US");
    EXPECT_EQ(manager.GetDefaultLook(), "Default");
}
