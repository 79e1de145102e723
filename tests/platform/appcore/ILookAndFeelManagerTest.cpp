#include "platform/appcore/ILookAndFeelManager.h"

#include "tests/platform/editorutil/VirtualSlot.h"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>

using EditorService::Testing::virtualSlot;
using Velmor::App::ILookAndFeelManager;

namespace {

struct SlotRow {
    const char* name;
    long slot;
    std::function<long()> slotOf;
};

// Names the row in test listings instead of dumping its bytes.
void PrintTo(const SlotRow& row, std::ostream* out) {
    *out << row.name;
}

class ILookAndFeelManagerSlotTest : public testing::TestWithParam<SlotRow> {};

TEST_P(ILookAndFeelManagerSlotTest, OperationSitsInItsSlot) {
    if (!EditorService::Testing::virtualSlotsAreReadable())
        GTEST_SKIP() << "virtual slots are not readable with this ABI";
    EXPECT_EQ(GetParam().slotOf(), GetParam().slot);
}

// Slots 0 and 1 hold the destructor, the first operation of the interface.
INSTANTIATE_TEST_SUITE_P(
    Operations, ILookAndFeelManagerSlotTest,
    testing::Values(
        SlotRow{"Initialize", 2, [] { return virtualSlot(&ILookAndFeelManager::Initialize); }},
        SlotRow{"GetCurrentLocale", 3,
                [] { return virtualSlot(&ILookAndFeelManager::GetCurrentLocale); }},
        SlotRow{"GetAvailableLocales", 4,
                [] { return virtualSlot(&ILookAndFeelManager::GetAvailableLocales); }},
        SlotRow{"GetAvailableLooks", 5,
                [] { return virtualSlot(&ILookAndFeelManager::GetAvailableLooks); }},
        SlotRow{"SetCurrentLocale", 6,
                [] { return virtualSlot(&ILookAndFeelManager::SetCurrentLocale); }},
        SlotRow{"SetCurrentLook", 7,
                [] { return virtualSlot(&ILookAndFeelManager::SetCurrentLook); }},
        SlotRow{"GetCurrentLook", 8,
                [] { return virtualSlot(&ILookAndFeelManager::GetCurrentLook); }},
        SlotRow{"GetDefaultLook", 9,
                [] { return virtualSlot(&ILookAndFeelManager::GetDefaultLook); }},
        SlotRow{"ApplyLook", 10, [] { return virtualSlot(&ILookAndFeelManager::ApplyLook); }},
        SlotRow{"GetStyleSheet", 11,
                [] { return virtualSlot(&ILookAndFeelManager::GetStyleSheet); }},
        SlotRow{"GetDefaultLocale", 12,
                [] { return virtualSlot(&ILookAndFeelManager::GetDefaultLocale); }},
        SlotRow{"ApplyLocale", 13, [] { return virtualSlot(&ILookAndFeelManager::ApplyLocale); }},
        SlotRow{"ReloadLooks", 14, [] { return virtualSlot(&ILookAndFeelManager::ReloadLooks); }}),
    [](const testing::TestParamInfo<SlotRow>& info) { return info.param.name; });

} // namespace
