#include "platform/editorlogic/RedirectionTable.h"

#include <gtest/gtest.h>

TEST(RedirectionTableTest, ResolvesARedirectedPathAndLeavesOthers) {
    Resource::RedirectionTable table;
    table.redirect("/old/a.png", "/new/a.png");
    EXPECT_EQ(table.resolve("/old/a.png"), "/new/a.png");
    EXPECT_EQ(table.resolve("/old/b.png"), "/old/b.png");
    EXPECT_EQ(table.size(), 1);
}

TEST(RedirectionTableTest, ALaterRedirectionReplacesTheEarlier) {
    Resource::RedirectionTable table;
    table.redirect("/a", "/b");
    table.redirect("/a", "/c");
    EXPECT_EQ(table.resolve("/a"), "/c");
    EXPECT_EQ(table.size(), 1);
}
