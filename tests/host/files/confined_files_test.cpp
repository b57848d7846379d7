#include "host/files/confined_files.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>

#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace tools {

// How a failing expectation shows an outcome.
void PrintTo(FileOutcome outcome, std::ostream* out) {
    constexpr const char* kNames[] = {"done", "missing", "refused", "failed"};
    *out << kNames[static_cast<int>(outcome)];
}

}  // namespace tools

namespace {

namespace fs = std::filesystem;
using tools::FileOutcome;
using tools::isConfinedName;

const std::string kLongest(255, 'n');
const std::string kTooLong(256, 'n');

TEST(ConfinedNameTest, NamesAndPathsBelowTheFolderAreConfined) {
    for (const char* name : {"a", "a/b/c.jpg", ".hidden", "...", "..a", "a..", "a/..b/c", "a b", "\xD1\x84", "-"})
        EXPECT_TRUE(isConfinedName(name)) << name;
}

TEST(ConfinedNameTest, TwoDotsLeadOutsideWhereverTheyStand) {
    for (const char* name : {"..", "../a", "a/..", "a/../b", "/..", "a//../b", "./..", "http://host/../../a"})
        EXPECT_FALSE(isConfinedName(name)) << name;
}

TEST(ConfinedNameTest, AbsoluteLookingAndUrlLikeNamesAreAppended) {
    for (const char* name : {"/etc/passwd", "//a", "http://host/a.jpg", "file:///a", "a//b", "./a", "a/./b", "a/"})
        EXPECT_TRUE(isConfinedName(name)) << name;
}

TEST(ConfinedNameTest, ANameWithoutAnyComponentIsNone) {
    for (const char* name : {"", "/", "//", ".", "./", "/./"})
        EXPECT_FALSE(isConfinedName(name)) << name;
}

TEST(ConfinedNameTest, AComponentMayHave255Bytes) {
    EXPECT_TRUE(isConfinedName(kLongest));
    EXPECT_TRUE(isConfinedName("a/" + kLongest + "/" + kLongest));
    EXPECT_FALSE(isConfinedName(kTooLong));
    EXPECT_FALSE(isConfinedName("a/" + kTooLong + "/b"));
}

TEST(ConfinedNameTest, ANulIsRefused) {
    EXPECT_FALSE(isConfinedName(std::string("a\0b", 3)));
    EXPECT_FALSE(isConfinedName(std::string("a\0", 2)));
}

// "inside" is the folder that names are confined to; what lies in "outside" must neither be read nor written.
class ConfinedFilesTest : public testing::Test {
protected:
    void SetUp() override {
        dir.write("inside/file", "bytes");
        dir.write("inside/sub/file", "sub bytes");
        dir.write("outside/secret", "secret");
        dir.makeDir("target");
    }
    void link(const std::string& target, const std::string& name) const {
        test::makeLink(dir.at(target), dir.at("inside/" + name));
    }
    bool exists(const std::string& name) const { return tools::confinedFileExists(dir.at("inside"), name); }
    bool taken(const std::string& name) const { return tools::confinedNameTaken(dir.at("inside"), name); }
    int createDir(const std::string& name) const { return tools::createConfinedDir(dir.at("inside"), name); }
    FileOutcome copy(const std::string& from, const std::string& to = "to") const {
        return tools::copyConfined(dir.at("inside"), from, dir.at("target"), to);
    }
    FileOutcome move(const std::string& from, const std::string& to = "to") const {
        tools::ConfinedFolder target(dir.at("target"));
        return tools::ConfinedFolder(dir.at("inside")).moveTo(target, from, to);
    }
    std::string read(const std::string& name) const { return test::readFile(dir.at(name)); }
    std::string targets() const { return test::listing(dir.at("target")); }

    test::TempDir dir;
};

TEST_F(ConfinedFilesTest, RegularFilesExist) {
    for (const char* name : {"file", "/file", "./file", "sub/file", "sub//./file", "//sub/file"})
        EXPECT_TRUE(exists(name)) << name;
}

TEST_F(ConfinedFilesTest, WhatIsNoRegularFileDoesNotExist) {
    test::makeFifo(dir.at("inside/fifo"));
    for (const char* name : {"missing", "missing/file", "sub", "fifo", "file/below", "../outside/secret", ""})
        EXPECT_FALSE(exists(name)) << name;
    EXPECT_FALSE(exists(dir.at("outside/secret")));
    EXPECT_FALSE(exists(kLongest));
    EXPECT_FALSE(exists(kTooLong));
}

TEST_F(ConfinedFilesTest, NoLinkBeneathTheFolderIsFollowed) {
    link("outside/secret", "link-out");
    link("inside/file", "link-in");
    link("outside", "folder-out");
    link("inside/sub", "folder-in");
    for (const char* name : {"link-out", "link-in", "folder-out/secret", "folder-in/file"}) {
        EXPECT_FALSE(exists(name)) << name;
        EXPECT_EQ(FileOutcome::refused, copy(name)) << name;
        EXPECT_EQ(FileOutcome::refused, move(name)) << name;
    }
    EXPECT_EQ("", targets());
    EXPECT_EQ("secret", read("outside/secret"));
}

TEST_F(ConfinedFilesTest, TheFolderItselfMayBeALink) {
    test::makeLink(dir.at("inside"), dir.at("link"));
    EXPECT_TRUE(tools::confinedFileExists(dir.at("link"), "sub/file"));
    EXPECT_EQ(FileOutcome::done, tools::copyConfined(dir.at("link"), "file", dir.at("link"), "sub/copy"));
    EXPECT_EQ("bytes", read("inside/sub/copy"));
    EXPECT_EQ(0, tools::createConfinedDir(dir.at("link"), "made"));
}

TEST_F(ConfinedFilesTest, TheFolderMayEndInASlash) {
    EXPECT_TRUE(tools::confinedFileExists(dir.at("inside/"), "/sub/file"));
    EXPECT_TRUE(tools::confinedNameTaken(dir.at("inside/"), "file"));
}

TEST_F(ConfinedFilesTest, AMissingFolderHoldsNothing) {
    EXPECT_FALSE(tools::confinedFileExists(dir.at("nowhere"), "file"));
    EXPECT_FALSE(tools::confinedNameTaken(dir.at("nowhere"), "file"));
    EXPECT_EQ(FileOutcome::missing, tools::copyConfined(dir.at("nowhere"), "file", dir.at("target"), "to"));
}

TEST_F(ConfinedFilesTest, AnythingThatStandsThereTakesTheName) {
    link("nowhere", "dangling");
    link("outside/secret", "link");
    test::makeFifo(dir.at("inside/fifo"));
    for (const char* name : {"file", "sub", "sub/file", "dangling", "link", "fifo"})
        EXPECT_TRUE(taken(name)) << name;
}

TEST_F(ConfinedFilesTest, ANameThatMustNotBeUsedCountsAsTaken) {
    link("outside", "folder-out");
    for (const std::string& name : {std::string("../new"), std::string("a/.."), std::string(), kTooLong,
                                    std::string("folder-out/new"), std::string("file/below"), std::string("a\0", 2)})
        EXPECT_TRUE(taken(name)) << name;
}

TEST_F(ConfinedFilesTest, AFreeNameIsNotTaken) {
    for (const char* name : {"new", "sub/new", "missing/new", "/new"})
        EXPECT_FALSE(taken(name)) << name;
}

TEST_F(ConfinedFilesTest, ACopyKeepsTheSourceAndAMoveTakesIt) {
    EXPECT_EQ(FileOutcome::done, copy("file", "copied"));
    EXPECT_EQ(FileOutcome::done, move("sub/file", "moved"));
    EXPECT_EQ("bytes", read("target/copied"));
    EXPECT_EQ("sub bytes", read("target/moved"));
    EXPECT_EQ("copied moved", targets());
    EXPECT_TRUE(exists("file"));
    EXPECT_FALSE(exists("sub/file"));
}

// Videos are: on a system whose files have 32-bit sizes by default, nothing would find this one.
TEST_F(ConfinedFilesTest, AFileOfMoreThanTwoGigabytesIsFoundAndMoved) {
    constexpr std::uintmax_t kSize = 3ULL << 30U;
    fs::resize_file(dir.at("inside/file"), kSize);  // takes no room
    EXPECT_TRUE(exists("file"));
    EXPECT_EQ(FileOutcome::done, move("file"));
    EXPECT_EQ(kSize, fs::file_size(dir.at("target/to")));
}

TEST_F(ConfinedFilesTest, OnlyTheOwnerMayReadTheCopy) {
    const test::NoUmask noUmask;
    EXPECT_EQ(FileOutcome::done, copy("file"));
    EXPECT_EQ(0600U, test::permissionsOf(dir.at("target/to")));
}

TEST_F(ConfinedFilesTest, AnExistingFileIsReplaced) {
    dir.write("target/one", "old and longer");
    dir.write("target/two", "old and longer");
    EXPECT_EQ(FileOutcome::done, copy("file", "one"));
    EXPECT_EQ(FileOutcome::done, move("file", "two"));
    EXPECT_EQ("bytes", read("target/one"));
    EXPECT_EQ("bytes", read("target/two"));
}

TEST_F(ConfinedFilesTest, TheLongestNameCanBeWritten) {
    EXPECT_EQ(FileOutcome::done, copy("file", kLongest));
    EXPECT_EQ("bytes", read("target/" + kLongest));
}

TEST_F(ConfinedFilesTest, AMissingSourceIsMissing) {
    for (const char* name : {"missing", "missing/file", "sub/missing"}) {
        EXPECT_EQ(FileOutcome::missing, copy(name)) << name;
        EXPECT_EQ(FileOutcome::missing, move(name)) << name;
    }
    EXPECT_EQ("", targets());
}

TEST_F(ConfinedFilesTest, ASourceThatIsNoFileIsRefusedWithoutWaiting) {
    test::makeFifo(dir.at("inside/fifo"));
    for (const char* name : {"sub", "fifo", "file/below"}) {
        EXPECT_EQ(FileOutcome::refused, copy(name)) << name;
        EXPECT_EQ(FileOutcome::refused, move(name)) << name;
    }
    EXPECT_EQ("", targets());
}

TEST_F(ConfinedFilesTest, ANameThatLeadsOutsideIsRefusedOnEitherSide) {
    for (const std::string& name : {std::string("../outside/secret"), std::string(), kTooLong}) {
        EXPECT_EQ(FileOutcome::refused, copy(name)) << name;
        EXPECT_EQ(FileOutcome::refused, move(name)) << name;
        EXPECT_EQ(FileOutcome::refused, copy("file", name)) << name;
        EXPECT_EQ(FileOutcome::refused, move("file", name)) << name;
    }
    EXPECT_EQ("bytes", read("inside/file"));
    EXPECT_EQ("secret", test::listing(dir.at("outside")));
}

TEST_F(ConfinedFilesTest, ATargetBehindALinkIsRefused) {
    test::makeLink(dir.at("outside"), dir.at("target/folder-out"));
    EXPECT_EQ(FileOutcome::refused, copy("file", "folder-out/secret"));
    EXPECT_EQ(FileOutcome::refused, move("file", "folder-out/new"));
    EXPECT_EQ("secret", read("outside/secret"));
    EXPECT_EQ("secret", test::listing(dir.at("outside")));
    EXPECT_EQ("bytes", read("inside/file"));
}

TEST_F(ConfinedFilesTest, ALinkUnderTheTargetsNameIsReplacedNotFollowed) {
    test::makeLink(dir.at("outside/new"), dir.at("target/dangling"));
    test::makeLink(dir.at("outside/secret"), dir.at("target/link"));
    EXPECT_EQ(FileOutcome::done, copy("file", "dangling"));
    EXPECT_EQ(FileOutcome::done, move("file", "link"));
    EXPECT_EQ("secret", test::listing(dir.at("outside")));
    EXPECT_EQ("secret", read("outside/secret"));
    EXPECT_EQ("bytes", read("target/dangling"));
    EXPECT_EQ("bytes", read("target/link"));
}

TEST_F(ConfinedFilesTest, AMissingTargetFolderIsAFailure) {
    EXPECT_EQ(FileOutcome::failed, copy("file", "missing/to"));
    EXPECT_EQ(FileOutcome::failed, move("file", "missing/to"));
    EXPECT_EQ(FileOutcome::failed, tools::copyConfined(dir.at("inside"), "file", dir.at("nowhere"), "to"));
    EXPECT_EQ("bytes", read("inside/file"));
    EXPECT_EQ("", targets());
}

TEST_F(ConfinedFilesTest, ADirectoryUnderTheTargetsNameIsAFailure) {
    dir.makeDir("target/folder");
    EXPECT_EQ(FileOutcome::failed, copy("file", "folder"));
    EXPECT_EQ(FileOutcome::failed, move("file", "folder"));
    EXPECT_EQ("bytes", read("inside/file"));
    EXPECT_EQ("folder", targets());
}

TEST_F(ConfinedFilesTest, AFullDiskIsAFailureThatLeavesNothing) {
    dir.write("inside/large", std::string(200000, 'x'));
    dir.write("target/to", "kept");
    {
        const test::FileSizeLimit limit(100000);
        EXPECT_EQ(FileOutcome::failed, copy("large"));
    }
    EXPECT_EQ("kept", read("target/to"));
    EXPECT_EQ("to", targets());
}

TEST_F(ConfinedFilesTest, FoldersAreMadeWithTheirParents) {
    const test::NoUmask noUmask;
    EXPECT_EQ(0, createDir("/a//b/./c/"));
    EXPECT_EQ(0700U, test::permissionsOf(dir.at("inside/a")));
    EXPECT_EQ(0700U, test::permissionsOf(dir.at("inside/a/b/c")));
    EXPECT_EQ(0, createDir("a/b"));
}

TEST_F(ConfinedFilesTest, ANameWithoutComponentsMakesTheFolderItself) {
    EXPECT_EQ(0, tools::createConfinedDir(dir.at("new/folder"), ""));
    EXPECT_EQ(0, tools::createConfinedDir(dir.at("new/folder"), "/"));
    EXPECT_TRUE(fs::is_directory(dir.at("new/folder")));
}

TEST_F(ConfinedFilesTest, NoFolderIsMadeOutside) {
    link("outside", "folder-out");
    link("outside/new", "dangling");
    for (const std::string& name :
         {std::string("../new"), std::string("a/../../new"), kTooLong, std::string("folder-out/new"),
          std::string("folder-out"), std::string("dangling"), std::string("dangling/new"), std::string("b\0", 2)})
        EXPECT_EQ(-1, createDir(name)) << name;
    EXPECT_EQ("secret", test::listing(dir.at("outside")));
    EXPECT_EQ("inside outside target", test::listing(dir.path()));
}

TEST_F(ConfinedFilesTest, NoFolderIsMadeWhereAFileStands) {
    EXPECT_EQ(-1, createDir("file"));
    EXPECT_EQ(-1, createDir("file/below"));
    EXPECT_EQ("bytes", read("inside/file"));
}

// --- One folder for many names ---

TEST_F(ConfinedFilesTest, AFolderGoesFromOneSubfolderToAnother) {
    dir.write("inside/sub/below/file", "below");
    dir.write("inside/other/file", "other");
    tools::ConfinedFolder inside(dir.at("inside"));
    tools::ConfinedFolder target(dir.at("target"));
    for (const char* name : {"sub/file", "sub/below/file", "sub//file", "other/file", "file", "sub/below/file"}) {
        EXPECT_TRUE(inside.hasFile(name)) << name;
        EXPECT_EQ(FileOutcome::done, inside.copyTo(target, name, "to")) << name;
        EXPECT_EQ(read(std::string("inside/") + name), read("target/to")) << name;
    }
    for (const char* name : {"other/below", "sub/other", "sub/fil", "su/file"})
        EXPECT_FALSE(inside.isTaken(name)) << name;
}

TEST_F(ConfinedFilesTest, AFolderFindsWhatAppearsLater) {
    tools::ConfinedFolder later(dir.at("later/"));
    EXPECT_FALSE(later.hasFile("sub/file"));
    EXPECT_FALSE(later.isTaken("sub/file"));
    EXPECT_EQ(0, later.createFolder("sub"));
    EXPECT_FALSE(later.hasFile("sub/file"));
    dir.write("later/sub/file", "bytes");
    EXPECT_TRUE(later.hasFile("sub/file"));
    EXPECT_EQ(0, later.createFolder("sub"));
    EXPECT_EQ(0, later.createFolder("sub/"));
}

TEST_F(ConfinedFilesTest, AFolderRefusesEachNameThatLeadsOverALink) {
    link("outside", "folder-out");
    tools::ConfinedFolder inside(dir.at("inside"));
    tools::ConfinedFolder target(dir.at("target"));
    EXPECT_TRUE(inside.hasFile("sub/file"));
    for (const char* name : {"folder-out/secret", "folder-out/missing", "sub/../../outside/secret", "file/below"}) {
        EXPECT_EQ(FileOutcome::refused, inside.copyTo(target, name, "to")) << name;
        EXPECT_TRUE(inside.isTaken(name)) << name;
    }
    EXPECT_EQ(FileOutcome::missing, inside.copyTo(target, "missing/secret", "to"));
    EXPECT_EQ("", targets());
}

TEST_F(ConfinedFilesTest, AFolderCopiesWithinItself) {
    tools::ConfinedFolder inside(dir.at("inside"));
    EXPECT_EQ(FileOutcome::done, inside.copyTo(inside, "sub/file", "copied"));
    EXPECT_EQ(0, inside.createFolder("new"));
    EXPECT_EQ(FileOutcome::done, inside.moveTo(inside, "sub/file", "new/moved"));
    EXPECT_EQ("sub bytes", read("inside/copied"));
    EXPECT_EQ("sub bytes", read("inside/new/moved"));
}

}  // namespace
