// What stands at a path, and files that are removed.
#include <gtest/gtest.h>

#include <cerrno>

#include "host/files/file_status.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace {

using tools::FileKind;

class FileStatusTest : public testing::Test {
protected:
    FileKind kindOf(const std::string& name) const { return tools::statusOf(dir.at(name)).kind; }

    test::TempDir dir;
};

TEST_F(FileStatusTest, TellsARegularFileAndItsSize) {
    const tools::FileStatus status = tools::statusOf(dir.write("file", "12345"));
    EXPECT_EQ(FileKind::regular, status.kind);
    EXPECT_EQ(5U, status.size);
    EXPECT_EQ(0, status.error);
}

TEST_F(FileStatusTest, TellsAFolderAndWhatIsNeither) {
    dir.makeDir("folder");
    test::makeFifo(dir.at("fifo"));
    EXPECT_EQ(FileKind::folder, kindOf("folder"));
    EXPECT_EQ(FileKind::other, kindOf("fifo"));
}

TEST_F(FileStatusTest, FollowsNoLink) {
    test::makeLink(dir.makeDir("folder"), dir.at("link"));
    EXPECT_EQ(FileKind::other, kindOf("link"));
}

TEST_F(FileStatusTest, SaysThatNothingIsThere) {
    dir.write("file", "");
    EXPECT_EQ(FileKind::none, kindOf("missing"));
    EXPECT_EQ(FileKind::none, kindOf("file/below"));
    EXPECT_EQ(ENOENT, tools::statusOf(dir.at("missing")).error);
}

TEST_F(FileStatusTest, SaysThatNobodyCanLook) {
    dir.write("closed/file", "");
    std::filesystem::permissions(dir.at("closed"), std::filesystem::perms::none);
    {
        const test::OrdinaryUser user;
        EXPECT_EQ(FileKind::unknown, kindOf("closed/file"));
        EXPECT_EQ(EACCES, tools::statusOf(dir.at("closed/file")).error);
    }
    std::filesystem::permissions(dir.at("closed"), std::filesystem::perms::owner_all);
}

TEST(RemoveFile, RemovesALinkAndNotWhatItLeadsTo) {
    const test::TempDir dir;
    const std::string link = test::makeLink(dir.write("file", ""), dir.at("link"));
    EXPECT_TRUE(tools::removeFile(link));
    EXPECT_EQ("file", test::listing(dir.path()));
    EXPECT_FALSE(tools::removeFile(link));
}

}  // namespace
