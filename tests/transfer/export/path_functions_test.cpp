// The path functions that the transfer object offers to its host.
#include "tests/transfer/export/account_fixture.h"

namespace {

class PathFunctions : public ::testing::Test {
protected:
    dbTrans transfer;
};

using BaseName = PathFunctions;
using FileName = PathFunctions;
using ValidatePath = PathFunctions;

TEST_F(BaseName, IsTheTextBeforeTheLastSlash) {
    EXPECT_EQ("a/b", transfer.baseName("a/b/c.jpg"));
    EXPECT_EQ("a/b", transfer.baseName("a/b/"));
    EXPECT_EQ("", transfer.baseName("/c.jpg"));
}

TEST_F(BaseName, OfANameWithoutASlashIsTheWholeName) {
    EXPECT_EQ("c.jpg", transfer.baseName("c.jpg"));
    EXPECT_EQ("", transfer.baseName(""));
}

TEST_F(FileName, IsTheTextAfterTheLastSlash) {
    EXPECT_EQ("c.jpg", transfer.filName("a/b/c.jpg"));
    EXPECT_EQ("", transfer.filName("a/b/"));
}

TEST_F(FileName, OfANameWithoutASlashIsTheWholeName) {
    EXPECT_EQ("c.jpg", transfer.filName("c.jpg"));
    EXPECT_EQ("", transfer.filName(""));
}

TEST_F(ValidatePath, TurnsBackslashesIntoSlashes) {
    EXPECT_EQ("a/b/c", transfer.validatePath("a\\b/c"));
}

TEST_F(ValidatePath, DropsOneSlashAtTheEnd) {
    EXPECT_EQ("a/b", transfer.validatePath("a\\b\\"));
    EXPECT_EQ("a/", transfer.validatePath("a//"));
    EXPECT_EQ("", transfer.validatePath("/"));
    EXPECT_EQ("", transfer.validatePath(""));
}

TEST_F(ValidatePath, TakesUpTo299Bytes) {
    const std::string longest(299, 'a');
    EXPECT_EQ(longest, transfer.validatePath(longest.c_str()));
    EXPECT_EQ("", transfer.validatePath((longest + "a").c_str()));
    EXPECT_EQ("", transfer.validatePath(nullptr));
}

class SavePath : public PathFunctions {
protected:
    std::string of(const char* path) { return transfer.getSavePath(path, directory); }

    std::string directory = "before";
};

TEST_F(SavePath, IsTheFourthSegmentLessTwoAndTheWholePathFlattened) {
    EXPECT_EQ("cc/_a_bb_cccc_dd_e.jpg", of("/a/bb/cccc/dd/e.jpg"));
    EXPECT_EQ("cc", directory);
}

TEST_F(SavePath, OfExactlyThreeSlashesLosesOneCharacterOfTheLastSegment) {
    EXPECT_EQ("cccc.jp/_a_bb_cccc.jpg", of("/a/bb/cccc.jpg"));
    EXPECT_EQ("cccc.jp", directory);
}

TEST_F(SavePath, TakesAFourthSegmentOfTwoCharacters) {
    EXPECT_EQ("/_a_bb_cc_e.jpg", of("/a/bb/cc/e.jpg"));
    EXPECT_EQ("", directory);
}

TEST_F(SavePath, TakesALastSegmentOfOneCharacter) {
    EXPECT_EQ("/_a_bb_c", of("/a/bb/c"));
    EXPECT_EQ("", directory);
}

TEST_F(SavePath, OfARelativePathCountsItsSegmentsTheSameWay) {
    EXPECT_EQ("dd/a_b_c_dddd_e", of("a/b/c/dddd/e"));
    EXPECT_EQ("dd", directory);
}

TEST_F(SavePath, OfWhatHasNoFourthSegmentIsEmpty) {
    for (const char* path : {"", "a", "/a/b", "/a/bb/", "/a/bb/c/e"}) {
        directory = "before";
        EXPECT_EQ("", of(path)) << path;
        EXPECT_EQ("", directory) << path;
    }
    EXPECT_EQ("", of(nullptr));
}

TEST_F(SavePath, TakesPathsOfUpTo255Bytes) {
    const std::string longest = "/a/b/cccc/" + std::string(245, 'e');
    EXPECT_EQ("cc/_a_b_cccc_" + std::string(245, 'e'), of(longest.c_str()));
    EXPECT_EQ("", of((longest + "e").c_str()));
    EXPECT_EQ("", directory);
}

TEST_F(SavePath, TakesDirectoryPartsOfUpTo49Bytes) {
    const std::string longest = "/a/b/" + std::string(51, 'c');
    EXPECT_EQ(std::string(49, 'c') + "/_a_b_" + std::string(51, 'c') + "_e", of((longest + "/e").c_str()));
    EXPECT_EQ("", of((longest + "c/e").c_str()));
    EXPECT_EQ("", directory);
}

}  // namespace
