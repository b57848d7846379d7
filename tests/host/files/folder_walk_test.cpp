// The one walk through folders.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include "host/files/folder_walk.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace {

using tools::FileKind;
using tools::FolderWalk;
using Names = std::vector<std::string>;

class FolderWalkTest : public testing::Test {
protected:
    // Everything below `root`, in the order of the walk.
    static Names namesBelow(const std::string& root, tools::NameOrder order = tools::NameOrder::byBytes) {
        Names names;
        FolderWalk walk(root, order);
        EXPECT_EQ(0, walk.enter());
        while (walk.next()) {
            names.push_back(walk.name());
            if (walk.status().kind == FileKind::folder) {
                EXPECT_EQ(0, walk.enter());
            }
        }
        return names;
    }

    test::TempDir dir;
};

TEST_F(FolderWalkTest, ComesToAFolderBeforeWhatItHolds) {
    dir.write("b/1", "");
    dir.write("b/a/2", "");
    dir.write("a", "");
    dir.write("c", "");
    EXPECT_EQ((Names{"a", "b", "b/1", "b/a", "b/a/2", "c"}), namesBelow(dir.path()));
}

TEST_F(FolderWalkTest, OrdersNamesByTheirBytes) {
    for (const char* name : {"a", "B", "\xc3\xa4", "10", "9"})
        dir.write(name, "");
    EXPECT_EQ((Names{"10", "9", "B", "a", "\xc3\xa4"}), namesBelow(dir.path()));
}

TEST_F(FolderWalkTest, KeepsTheOrderOfTheSystemWhereNoOtherIsAskedFor) {
    for (int i = 0; i < 50; ++i)
        dir.write("file" + std::to_string(i), "");
    Names listed;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
        listed.push_back(entry.path().filename().string());
    EXPECT_EQ(listed, namesBelow(dir.path(), tools::NameOrder::asListed));
    EXPECT_EQ(listed, tools::namesIn(dir.path()).names);
}

TEST_F(FolderWalkTest, GivesEachEntryItsPathAndItsLastComponent) {
    dir.write("a/b.mg", "123");
    FolderWalk walk(dir.path());
    EXPECT_EQ(dir.path(), walk.path());
    ASSERT_EQ(0, walk.enter());
    ASSERT_TRUE(walk.next());
    ASSERT_EQ(0, walk.enter());
    ASSERT_TRUE(walk.next());
    EXPECT_EQ("a/b.mg", walk.name());
    EXPECT_EQ("b.mg", walk.fileName());
    EXPECT_EQ(dir.at("a/b.mg"), walk.path());
    EXPECT_EQ(3U, walk.status().size);
    EXPECT_EQ(2U, walk.depth());
    EXPECT_FALSE(walk.next());
}

TEST_F(FolderWalkTest, FollowsALinkOnlyAtTheRoot) {
    dir.write("real/file", "");
    test::makeLink(dir.path(), dir.at("real/up"));
    EXPECT_EQ((Names{"file", "up"}), namesBelow(test::makeLink(dir.at("real"), dir.at("link"))));
}

TEST_F(FolderWalkTest, PassesByAFolderThatIsNotEntered) {
    dir.write("a/1", "");
    dir.write("b", "");
    FolderWalk walk(dir.path(), tools::NameOrder::byBytes);
    ASSERT_EQ(0, walk.enter());
    ASSERT_TRUE(walk.next());
    ASSERT_TRUE(walk.next());
    EXPECT_EQ("b", walk.name());
}

TEST_F(FolderWalkTest, DoesNotSeeWhatIsMadeOnTheWay) {
    dir.write("a", "");
    FolderWalk walk(dir.path());
    ASSERT_EQ(0, walk.enter());
    ASSERT_TRUE(walk.next());
    dir.write("b", "");
    EXPECT_FALSE(walk.next());
}

TEST_F(FolderWalkTest, SaysWhatHasGoneMeanwhile) {
    const std::string path = dir.write("a", "");
    FolderWalk walk(dir.path());
    ASSERT_EQ(0, walk.enter());
    ASSERT_TRUE(tools::removeFile(path));
    ASSERT_TRUE(walk.next());
    EXPECT_EQ(FileKind::none, walk.status().kind);
    EXPECT_EQ(ENOENT, walk.status().error);
}

TEST_F(FolderWalkTest, SaysWhyAFolderCannotBeEntered) {
    FolderWalk missing(dir.at("missing"));
    EXPECT_EQ(ENOENT, missing.enter());
    EXPECT_FALSE(missing.next());
    EXPECT_EQ(ENOTDIR, FolderWalk(dir.write("file", "")).enter());
}

}  // namespace
