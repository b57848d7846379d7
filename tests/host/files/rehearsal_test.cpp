// Folders in a rehearsal: nothing is changed, and everything that follows sees what would have been.
#include <gtest/gtest.h>
#include <unistd.h>

#include "host/files/confined_files.h"
#include "tests/support/temp_dir.h"

namespace {

using tools::ConfinedFolder;
using tools::FileKind;
using tools::FileOutcome;

class Rehearsal : public testing::Test {
protected:
    Rehearsal() {
        home_.write("from/a.jpg", "bytes");
        home_.makeDir("to");
        from_.rehearse(&rehearsal_);
        to_.rehearse(&rehearsal_);
    }

    test::TempDir home_;
    tools::Rehearsal rehearsal_;
    ConfinedFolder from_{home_.at("from/")};
    ConfinedFolder to_{home_.at("to/")};
};

TEST_F(Rehearsal, CopiesNothingAndSaysThatItWouldHave) {
    EXPECT_EQ(FileOutcome::done, from_.copyTo(to_, "a.jpg", "b.jpg"));
    EXPECT_EQ("", test::listing(home_.at("to")));
}

TEST_F(Rehearsal, MovesNothingAndSaysThatItWouldHave) {
    EXPECT_EQ(FileOutcome::done, from_.moveTo(to_, "a.jpg", "b.jpg"));
    EXPECT_TRUE(test::exists(home_.at("from/a.jpg")));
    EXPECT_EQ("", test::listing(home_.at("to")));
}

TEST_F(Rehearsal, SeesWhatWouldHaveBeenCopied) {
    EXPECT_EQ(FileKind::none, to_.kindOf("b.jpg"));
    ASSERT_EQ(tools::FileOutcome::done, from_.copyTo(to_, "a.jpg", "b.jpg"));
    EXPECT_EQ(FileKind::regular, to_.kindOf("b.jpg"));
    EXPECT_TRUE(to_.isTaken("b.jpg"));
    EXPECT_TRUE(to_.hasFile("b.jpg"));
}

TEST_F(Rehearsal, SeesItFromAnotherFolderObjectOfTheSamePlace) {
    ASSERT_EQ(tools::FileOutcome::done, from_.copyTo(to_, "a.jpg", "b.jpg"));
    ConfinedFolder again(home_.at("to/"));
    again.rehearse(&rehearsal_);
    EXPECT_EQ(FileKind::regular, again.kindOf("./b.jpg"));
}

TEST_F(Rehearsal, MissesWhatWouldHaveBeenMovedAway) {
    ASSERT_EQ(tools::FileOutcome::done, from_.moveTo(to_, "a.jpg", "b.jpg"));
    EXPECT_FALSE(from_.hasFile("a.jpg"));
    EXPECT_EQ(FileOutcome::missing, from_.moveTo(to_, "a.jpg", "c.jpg"));
}

TEST_F(Rehearsal, StillMissesWhatIsNotThere) {
    EXPECT_EQ(FileOutcome::missing, from_.copyTo(to_, "none.jpg", "b.jpg"));
    EXPECT_EQ(FileKind::none, to_.kindOf("b.jpg"));
}

TEST_F(Rehearsal, StillRefusesLinksAndNamesThatLeadOut) {
    ASSERT_EQ(0, symlink("/etc/hostname", home_.at("from/link.jpg").c_str()));
    EXPECT_EQ(FileOutcome::refused, from_.copyTo(to_, "link.jpg", "b.jpg"));
    EXPECT_EQ(FileOutcome::refused, from_.copyTo(to_, "a.jpg", "../b.jpg"));
}

TEST_F(Rehearsal, FailsWhereTheFolderIsMissing) {
    EXPECT_EQ(FileOutcome::failed, from_.copyTo(to_, "a.jpg", "sub/b.jpg"));
}

TEST_F(Rehearsal, CopiesIntoAFolderThatWouldHaveBeenCreated) {
    EXPECT_EQ(0, to_.createFolder("sub"));
    EXPECT_EQ("", test::listing(home_.at("to")));
    EXPECT_EQ(FileOutcome::done, from_.copyTo(to_, "a.jpg", "sub/b.jpg"));
    EXPECT_EQ(FileKind::regular, to_.kindOf("sub/b.jpg"));
}

TEST_F(Rehearsal, CreatesNoFolderBehindALink) {
    ASSERT_EQ(0, symlink("/tmp", home_.at("to/link").c_str()));
    EXPECT_EQ(-1, to_.createFolder("link/sub"));
}

}  // namespace
