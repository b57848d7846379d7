// The names of what is not whole yet.
#include <gtest/gtest.h>

#include "host/files/temporary_name.h"

namespace {

TEST(TemporaryName, IsAnotherOneEachTimeAndIsRecognised) {
    const std::string first = tools::nextTemporaryName();
    const std::string second = tools::nextTemporaryName();
    EXPECT_NE(first, second);
    EXPECT_TRUE(tools::isTemporaryName(first)) << first;
    EXPECT_TRUE(tools::isTemporaryName(second)) << second;
}

TEST(TemporaryName, IsRecognisedAsItWasBefore) {
    EXPECT_TRUE(tools::isTemporaryName(".new-4711-0.part"));
    EXPECT_TRUE(tools::isTemporaryName(".caes-0123456789abcdef.part"));
}

TEST(TemporaryName, IsRecognisedAsAWholeOnly) {
    for (const char* name :
         {"", "a.part", ".part", ".chat-transfer-.part", ".chat-transfer-1.part", ".chat-transfer-1-.part",
          ".chat-transfer-1-2.partial", "x.chat-transfer-1-2.part", ".chat-transfer-1-x.part", ".new-1-.part",
          ".caes-0123456789abcde.part", ".caes-0123456789abcdefg.part", ".caes-0123456789ABCDEF.part"})
        EXPECT_FALSE(tools::isTemporaryName(name)) << name;
}

TEST(TemporaryName, OfAFolderSaysWhatIsBeingBuilt) {
    EXPECT_EQ(".chat-transfer-tree.part", tools::temporaryName("tree"));
    EXPECT_EQ(".chat-transfer.part", tools::temporaryName(""));
    EXPECT_FALSE(tools::isTemporaryName(tools::temporaryName("tree")));
}

}  // namespace
