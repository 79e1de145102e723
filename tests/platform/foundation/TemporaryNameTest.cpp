#include "platform/foundation/TemporaryName.h"

#include <gtest/gtest.h>

using Velmor::TemporaryName;

TEST(TemporaryNameTest, NamesTheOutputTheHostTheProcessAndTheLetters) {
    EXPECT_EQ((TemporaryName{"out.mp4", "node7", 4242, "aB3xY9"}.text()),
              "out.mp4.reelsmith-partial-node7-4242-aB3xY9");
}

TEST(TemporaryNameTest, ANameReadsBackToItsPartsEvenWithDashesInTheHost) {
    const auto parsed =
        TemporaryName::parse("clip.final.mp4.reelsmith-partial-render-node-12-77-Zz09aA");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->output, "clip.final.mp4");
    EXPECT_EQ(parsed->host, "render-node-12");
    EXPECT_EQ(parsed->pid, 77);
    EXPECT_EQ(parsed->letters, "Zz09aA");
}

TEST(TemporaryNameTest, NamesThatAreNoTemporariesReadAsNothing) {
    for (const char* name :
         {"out.mp4", "out.mp4.reelsmith-partial-", "out.mp4.reelsmith-partial-1234",
          "out.mp4.reelsmith-partial-host-12-abc", "out.mp4.reelsmith-partial-host-12-abcdefg",
          "out.mp4.reelsmith-partial-host-x2-abcdef", "out.mp4.reelsmith-partial-host--abcdef",
          "out.mp4.reelsmith-partial--12-abcdef", "out.mp4.reelsmith-partial-host-12-ab.def",
          ".reelsmith-partial-host-12-abcdef"})
        EXPECT_FALSE(TemporaryName::parse(name)) << name;
}

TEST(TemporaryNameTest, ThisHostIsAPlainPartOfAFileName) {
    const std::string& host = TemporaryName::thisHost();
    ASSERT_FALSE(host.empty());
    EXPECT_EQ(host.find('/'), std::string::npos);
    const auto parsed = TemporaryName::parse(TemporaryName{"a", host, 1, "abcdef"}.text());
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->host, host);
}
