#include "platform/editorlogic/RedirectionTableHolder.h"

#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>
#include <type_traits>

using Velmor::Testing::CallLog;

TEST(RedirectionTableHolderTest, IsARedirectionTableHolderWithAVirtualDestructor) {
    EXPECT_TRUE(
        (std::is_base_of_v<Resource::IRedirectionTableHolder, Resource::RedirectionTableHolder>));
    EXPECT_TRUE(std::has_virtual_destructor_v<Resource::IRedirectionTableHolder>);
}

TEST(RedirectionTableHolderTest, BothTableAccessorsReachTheOneTable) {
    Resource::RedirectionTableHolder holder;
    holder.table().redirect("/a", "/b");
    const Resource::IRedirectionTableHolder& readOnly = holder;
    EXPECT_EQ(&readOnly.table(), &holder.table());
    EXPECT_EQ(readOnly.table().resolve("/a"), "/b");
}

TEST(RedirectionTableHolderTest, LifetimeAndFlushAreRecorded) {
    CallLog::clear();
    {
        std::unique_ptr<Resource::IRedirectionTableHolder> holder =
            std::make_unique<Resource::RedirectionTableHolder>();
        holder->flush();
    }
    const std::vector<std::string> expected{
        "Resource::RedirectionTableHolder::RedirectionTableHolder",
        "Resource::RedirectionTableHolder::flush",
        "Resource::RedirectionTableHolder::~RedirectionTableHolder"};
    EXPECT_EQ(CallLog::entries(), expected);
}
