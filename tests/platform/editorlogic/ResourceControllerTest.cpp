#include "platform/editorlogic/ResourceController.h"

#include "platform/editorlogic/RedirectionTableHolder.h"
#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>

using Velmor::Testing::CallLog;

TEST(ResourceControllerTest, LocatesResourcesThroughItsRedirections) {
    const Resource::Controller controller(std::make_unique<Resource::RedirectionTableHolder>());
    controller.redirections().table().redirect("/old", "/new");
    EXPECT_EQ(controller.locate("/old"), "/new");
    EXPECT_EQ(controller.locate("/other"), "/other");
}

TEST(ResourceControllerTest, OwnsTheHolderAndDestroysItAfterItself) {
    CallLog::clear();
    { const Resource::Controller controller(std::make_unique<Resource::RedirectionTableHolder>()); }
    const std::vector<std::string> expected{
        "Resource::RedirectionTableHolder::RedirectionTableHolder",
        "Resource::Controller::Controller", "Resource::Controller::~Controller",
        "Resource::RedirectionTableHolder::~RedirectionTableHolder"};
    EXPECT_EQ(CallLog::entries(), expected);
}
