// Paths in the words of the person who named the folder.
#include "app/base/given_folder.h"

#include <gtest/gtest.h>

namespace app {
namespace {

const GivenFolder kFolder{"../backup", "/home/ann/backup", "/home/ann/backup"};
const GivenFolder kPackage{"old/qelmsg_0", "/home/ann/old/qelmsg_0", "/home/ann/old"};

TEST(GivenFolder, NamesWhatLiesInItAsItWasWritten) {
    EXPECT_EQ("../backup/qelmsg_0/msg_0.mg", kFolder.nameOf("./qelmsg_0/msg_0.mg"));
    EXPECT_EQ("../backup/qelmsg_0/msg_0.mg", kFolder.nameOf("/home/ann/backup/qelmsg_0/msg_0.mg"));
}

TEST(GivenFolder, MayLieInTheFolderThatNamesBeginIn) {
    EXPECT_EQ("old/qelmsg_0/msg_0.mg", kPackage.nameOf("./qelmsg_0/msg_0.mg"));
}

TEST(GivenFolder, ItselfIsWhatWasWritten) {
    EXPECT_EQ("../backup", kFolder.nameOf("/home/ann/backup"));
    EXPECT_EQ("../backup", kFolder.nameOf("./"));
}

TEST(GivenFolder, LeavesNoDoubledSlash) {
    EXPECT_EQ("../backup/qelbackup/7/a.mg", kFolder.nameOf("./qelbackup//7//a.mg"));
    EXPECT_EQ("backup/a.mg", (GivenFolder{"backup/", "/b", "/b"}.nameOf("./a.mg")));
}

TEST(GivenFolder, LeavesOtherPathsAndTextsAsTheyAre) {
    EXPECT_EQ("/home/ann/other/a.mg", kFolder.nameOf("/home/ann/other/a.mg"));
    EXPECT_EQ("./other/a.mg", kPackage.nameOf("./other/a.mg"));
    EXPECT_EQ("2002/a.mg", kFolder.nameOf("2002/a.mg"));
    EXPECT_EQ("the list of tables", kFolder.nameOf("the list of tables"));
}

TEST(GivenFolder, OfNoFolderLeavesEverythingAsItIs) {
    EXPECT_EQ("./a.mg", GivenFolder{}.nameOf("./a.mg"));
    EXPECT_EQ("/home/ann/a.mg", GivenFolder{}.nameOf("/home/ann/a.mg"));
}

}  // namespace
}  // namespace app
