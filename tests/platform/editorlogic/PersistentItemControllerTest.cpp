#include "platform/editorlogic/PersistentItemController.h"

#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>

using EditorCollection::AsyncLoadPolicy;
using Velmor::Testing::CallLog;

TEST(PersistentItemControllerTest, KeepsAndRecordsItsPolicyByNumber) {
    CallLog::clear();
    {
        const EditorCollection::PersistentItemController controller(AsyncLoadPolicy::LoadOnDemand);
        EXPECT_EQ(controller.policy(), AsyncLoadPolicy::LoadOnDemand);
    }
    const std::vector<std::string> expected{
        "EditorCollection::PersistentItemController::PersistentItemController(1)",
        "EditorCollection::PersistentItemController::~PersistentItemController"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST(PersistentItemControllerTest, PolicyZeroLoadsAtOnce) {
    EXPECT_EQ(static_cast<AsyncLoadPolicy>(0), AsyncLoadPolicy::LoadAtOnce);
}
