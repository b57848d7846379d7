#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "host/tools.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

// Makes what no copy may take as its source, each under its own name.
void makeWhatIsNoFile(const test::TempDir& dir) {
    dir.makeDir("folder");
    test::makeFifo(dir.at("fifo"));
    test::makeLink(dir.at("nowhere"), dir.at("dangling"));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, dir.at("socket").c_str(), sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(0, bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    close(descriptor);
}
constexpr const char* kNoFiles[] = {"folder", "fifo", "dangling", "socket", "missing", ""};

class ToolsFilesTest : public testing::Test {
protected:
    bool fileExists(const std::string& name) const { return tools::fileExist(dir.at(name).c_str()); }
    int createDir(const std::string& name) const { return tools::createDir(dir.at(name).c_str()); }
    int delDir(const std::string& name) const { return tools::del_dir(dir.at(name).c_str()); }
    int copy(const std::string& from, const std::string& to) const {
        return tools::copyFile(dir.at(from).c_str(), dir.at(to).c_str());
    }
    int move(const std::string& from, const std::string& to) const {
        return tools::moveFile(dir.at(from).c_str(), dir.at(to).c_str());
    }
    std::string read(const std::string& name) const { return test::readFile(dir.at(name)); }
    std::string names() const { return test::listing(dir.path()); }

    test::TempDir dir;
};

using FileExistTest = ToolsFilesTest;

TEST_F(FileExistTest, FilesAndDirectoriesExist) {
    dir.write("file", "");
    dir.makeDir("folder");
    test::makeFifo(dir.at("fifo"));
    for (const char* name : {"file", "folder", "fifo"}) {
        EXPECT_TRUE(fileExists(name)) << name;
        EXPECT_EQ(1, tools::isFileExsit(dir.at(name))) << name;
    }
}

TEST_F(FileExistTest, WhatIsNotThereDoesNot) {
    dir.write("file", "");
    for (const char* name : {"missing", "missing/file", "file/below"}) {
        EXPECT_FALSE(fileExists(name)) << name;
        EXPECT_EQ(0, tools::isFileExsit(dir.at(name))) << name;
    }
    EXPECT_FALSE(tools::fileExist(nullptr));
    EXPECT_FALSE(tools::fileExist(""));
    EXPECT_EQ(0, tools::isFileExsit(""));
}

TEST_F(FileExistTest, ALinkExistsWhenItsTargetDoes) {
    test::makeLink(dir.write("file", ""), dir.at("link"));
    test::makeLink(dir.at("nowhere"), dir.at("dangling"));
    EXPECT_TRUE(fileExists("link"));
    EXPECT_FALSE(fileExists("dangling"));
}

TEST_F(FileExistTest, FilesOfMoreThanFourGibibytesExist) {
    fs::resize_file(dir.write("file", ""), std::uintmax_t{5} << 30);
    EXPECT_TRUE(fileExists("file"));
}

TEST_F(FileExistTest, PresenceTellsWhatIsNotThereFromWhatIs) {
    dir.write("file", "");
    EXPECT_EQ(tools::Presence::present, tools::presenceOf(dir.at("file")));
    for (const std::string name : {"missing", "missing/file", "file/below"})
        EXPECT_EQ(tools::Presence::absent, tools::presenceOf(dir.at(name))) << name;
    EXPECT_EQ(tools::Presence::absent, tools::presenceOf(dir.at(std::string(300, 'x'))));
    EXPECT_EQ(tools::Presence::absent, tools::presenceOf(""));
}

using CreateDirTest = ToolsFilesTest;

TEST_F(CreateDirTest, MakesTheDirectoryWithItsParents) {
    EXPECT_EQ(0, createDir("a/b//c/"));
    EXPECT_TRUE(fs::is_directory(dir.at("a/b/c")));
}

TEST_F(CreateDirTest, OnlyTheOwnerMayEnterWhatItMakes) {
    const test::NoUmask noUmask;
    EXPECT_EQ(0, createDir("a/b"));
    EXPECT_EQ(0700U, test::permissionsOf(dir.at("a")));
    EXPECT_EQ(0700U, test::permissionsOf(dir.at("a/b")));
}

TEST_F(CreateDirTest, AnExistingDirectoryIsASuccessAndKeepsItsMode) {
    fs::permissions(dir.makeDir("a"), static_cast<fs::perms>(0755));
    dir.write("a/file", "kept");
    EXPECT_EQ(0, createDir("a"));
    EXPECT_EQ(0755U, test::permissionsOf(dir.at("a")));
    EXPECT_EQ("kept", read("a/file"));
}

TEST_F(CreateDirTest, ALinkToADirectoryIsASuccess) {
    test::makeLink(dir.makeDir("a"), dir.at("link"));
    EXPECT_EQ(0, createDir("link"));
    EXPECT_EQ(0, createDir("link/b"));
    EXPECT_TRUE(fs::is_directory(dir.at("a/b")));
}

TEST_F(CreateDirTest, FailsWhereAFileStands) {
    dir.write("file", "kept");
    EXPECT_EQ(-1, createDir("file"));
    EXPECT_EQ(-1, createDir("file/below"));
    EXPECT_EQ("kept", read("file"));
}

TEST_F(CreateDirTest, FailsForNoPath) {
    EXPECT_EQ(-1, tools::createDir(nullptr));
    EXPECT_EQ(-1, tools::createDir(""));
}

TEST_F(CreateDirTest, FailsWithoutPermission) {
    fs::permissions(dir.path(), static_cast<fs::perms>(0555));
    const test::OrdinaryUser user;
    EXPECT_EQ(-1, createDir("a"));
    EXPECT_EQ(-1, createDir("a/b"));
}

using DelDirTest = ToolsFilesTest;

TEST_F(DelDirTest, RemovesTheDirectoryAndAllInIt) {
    dir.write("a/file", "");
    dir.write("a/b/c/.hidden", "");
    test::makeFifo(dir.at("a/fifo"));
    EXPECT_EQ(0, delDir("a"));
    EXPECT_EQ("", names());
}

TEST_F(DelDirTest, RemovesLinksButNotWhatTheyLeadTo) {
    dir.write("outside/file", "kept");
    dir.makeDir("a/b");
    test::makeLink(dir.at("outside"), dir.at("a/b/folder-link"));
    test::makeLink(dir.at("outside/file"), dir.at("a/file-link"));
    test::makeLink(dir.at("nowhere"), dir.at("a/dangling"));
    test::makeLink("..", dir.at("a/b/up"));
    EXPECT_EQ(0, delDir("a"));
    EXPECT_EQ("outside", names());
    EXPECT_EQ("kept", read("outside/file"));
}

TEST_F(DelDirTest, TakesAPathThatEndsInASlash) {
    dir.write("a/b/file", "");
    EXPECT_EQ(0, delDir("a/b//"));
    EXPECT_EQ(0, delDir("a/"));
    EXPECT_EQ("", names());
}

TEST_F(DelDirTest, RefusesALink) {
    dir.write("a/file", "kept");
    test::makeLink(dir.at("a"), dir.at("link"));
    EXPECT_EQ(-1, delDir("link"));
    EXPECT_EQ(-1, delDir("link/"));
    EXPECT_EQ("a link", names());
    EXPECT_EQ("kept", read("a/file"));
}

TEST_F(DelDirTest, RefusesWhatIsNoDirectory) {
    dir.write("file", "kept");
    EXPECT_EQ(-1, delDir("file"));
    EXPECT_EQ(-1, delDir("missing"));
    EXPECT_EQ(-1, tools::del_dir(nullptr));
    EXPECT_EQ(-1, tools::del_dir(""));
    EXPECT_EQ("file", names());
}

TEST_F(DelDirTest, SaysWhenSomethingCouldNotBeRemoved) {
    dir.write("a/locked/file", "kept");
    fs::permissions(dir.path(), static_cast<fs::perms>(0777));
    fs::permissions(dir.at("a"), static_cast<fs::perms>(0777));
    fs::permissions(dir.at("a/locked"), static_cast<fs::perms>(0555));
    {
        const test::OrdinaryUser user;
        EXPECT_EQ(-1, delDir("a"));
    }
    EXPECT_EQ("kept", read("a/locked/file"));
    fs::permissions(dir.at("a/locked"), static_cast<fs::perms>(0777));
}

using CopyFileTest = ToolsFilesTest;

TEST_F(CopyFileTest, KeepsTheBytes) {
    for (const std::string& bytes : {std::string(), std::string("a\0b\n", 4), test::patterned(5000000)}) {
        dir.write("from", bytes);
        EXPECT_EQ(0, copy("from", "to"));
        EXPECT_TRUE(bytes == read("to")) << bytes.size();
        EXPECT_TRUE(bytes == read("from")) << bytes.size();
    }
    EXPECT_EQ("from to", names());
}

TEST_F(CopyFileTest, OnlyTheOwnerMayReadTheCopy) {
    const test::NoUmask noUmask;
    fs::permissions(dir.write("from", "x"), static_cast<fs::perms>(0777));
    EXPECT_EQ(0, copy("from", "to"));
    EXPECT_EQ(0600U, test::permissionsOf(dir.at("to")));
}

TEST_F(CopyFileTest, ReplacesAnExistingFile) {
    dir.write("from", "new");
    dir.write("to", "old and longer");
    EXPECT_EQ(0, copy("from", "to"));
    EXPECT_EQ("new", read("to"));
    EXPECT_EQ("from to", names());
}

TEST_F(CopyFileTest, ReplacesALinkInsteadOfWritingThroughIt) {
    dir.write("from", "new");
    test::makeLink(dir.write("outside", "kept"), dir.at("to"));
    EXPECT_EQ(0, copy("from", "to"));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(dir.at("to"))));
    EXPECT_EQ("kept", read("outside"));
}

TEST_F(CopyFileTest, FollowsALinkToItsSource) {
    test::makeLink(dir.write("from", "bytes"), dir.at("link"));
    EXPECT_EQ(0, copy("link", "to"));
    EXPECT_EQ("bytes", read("to"));
}

TEST_F(CopyFileTest, OntoItselfKeepsTheFile) {
    dir.write("from", "bytes");
    EXPECT_EQ(0, copy("from", "from"));
    EXPECT_EQ("bytes", read("from"));
    EXPECT_EQ("from", names());
}

TEST_F(CopyFileTest, FailsOverADirectoryAndLeavesNothing) {
    dir.write("from", "x");
    dir.makeDir("to");
    EXPECT_EQ(-1, copy("from", "to"));
    EXPECT_EQ("from to", names());
    EXPECT_EQ("", test::listing(dir.at("to")));
}

TEST_F(CopyFileTest, FailsIntoAMissingDirectory) {
    dir.write("from", "x");
    EXPECT_EQ(-1, copy("from", "missing/to"));
    EXPECT_EQ("from", names());
}

TEST_F(CopyFileTest, TakesRegularFilesOnlyAndNeverWaits) {
    makeWhatIsNoFile(dir);
    dir.write("to", "kept");
    const std::string before = names();
    for (const char* source : kNoFiles)
        EXPECT_EQ(-1, copy(source, "to")) << source;
    EXPECT_EQ("kept", read("to"));
    EXPECT_EQ(before, names());
}

TEST_F(CopyFileTest, FailsForNoPath) {
    dir.write("file", "x");
    EXPECT_EQ(-1, tools::copyFile(nullptr, dir.at("to").c_str()));
    EXPECT_EQ(-1, tools::copyFile(dir.at("file").c_str(), nullptr));
    EXPECT_EQ(-1, tools::copyFile(dir.at("file").c_str(), ""));
    EXPECT_EQ("file", names());
}

TEST_F(CopyFileTest, AFullDiskLeavesTheTargetAsItWas) {
    dir.write("from", test::patterned(200000));
    dir.write("to", "kept");
    {
        const test::FileSizeLimit limit(100000);
        EXPECT_EQ(-1, copy("from", "to"));
        EXPECT_EQ(-1, copy("from", "new"));
    }
    EXPECT_EQ("kept", read("to"));
    EXPECT_EQ("from to", names());
}

TEST_F(CopyFileTest, AnUnreadableSourceFails) {
    fs::permissions(dir.path(), static_cast<fs::perms>(0777));
    fs::permissions(dir.write("from", "x"), static_cast<fs::perms>(0000));
    const test::OrdinaryUser user;
    EXPECT_EQ(-1, copy("from", "to"));
    EXPECT_FALSE(test::exists(dir.at("to")));
}

using MoveFileTest = ToolsFilesTest;

TEST_F(MoveFileTest, TakesTheFileAway) {
    dir.write("from", std::string("a\0b", 3));
    EXPECT_EQ(0, move("from", "to"));
    EXPECT_EQ(std::string("a\0b", 3), read("to"));
    EXPECT_EQ("to", names());
}

TEST_F(MoveFileTest, ReplacesAnExistingFile) {
    dir.write("from", "new");
    dir.write("to", "old and longer");
    EXPECT_EQ(0, move("from", "to"));
    EXPECT_EQ("new", read("to"));
    EXPECT_EQ("to", names());
}

TEST_F(MoveFileTest, AFailureKeepsTheSource) {
    dir.write("from", "kept");
    dir.makeDir("folder");
    EXPECT_EQ(-1, move("from", "folder"));
    EXPECT_EQ(-1, move("from", "missing/to"));
    EXPECT_EQ("kept", read("from"));
    EXPECT_EQ("folder from", names());
}

TEST_F(MoveFileTest, TakesRegularFilesOnly) {
    makeWhatIsNoFile(dir);
    test::makeLink(dir.write("to", "kept"), dir.at("link"));
    const std::string before = names();
    for (const char* source : kNoFiles)
        EXPECT_EQ(-1, move(source, "to")) << source;
    EXPECT_EQ(-1, move("link", "elsewhere"));
    EXPECT_EQ("kept", read("to"));
    EXPECT_EQ(before, names());
}

TEST_F(MoveFileTest, FailsForNoPath) {
    dir.write("file", "x");
    EXPECT_EQ(-1, tools::moveFile(nullptr, dir.at("to").c_str()));
    EXPECT_EQ(-1, tools::moveFile(dir.at("file").c_str(), nullptr));
    EXPECT_EQ("file", names());
}

// Two folders on different file systems.
class MoveAcrossTest : public ToolsFilesTest {
protected:
    void SetUp() override {
        if (other.path().empty()) GTEST_SKIP() << "this machine has one file system only";
    }
    int moveAcross(const std::string& from, const std::string& to) const {
        return tools::moveFile(dir.at(from).c_str(), (other.path() + "/" + to).c_str());
    }
    const test::OtherFileSystem other{dir.path()};
};

TEST_F(MoveAcrossTest, TakesTheFileAway) {
    const std::string bytes = test::patterned(3000000);
    dir.write("from", bytes);
    EXPECT_EQ(0, moveAcross("from", "to"));
    EXPECT_TRUE(bytes == test::readFile(other.path() + "/to"));
    EXPECT_EQ(0600U, test::permissionsOf(other.path() + "/to"));
    EXPECT_EQ("", names());
    EXPECT_EQ("to", test::listing(other.path()));
}

TEST_F(MoveAcrossTest, ReplacesAnExistingFile) {
    dir.write("from", "new");
    dir.write("old", "old and longer");
    EXPECT_EQ(0, moveAcross("old", "to"));
    EXPECT_EQ(0, moveAcross("from", "to"));
    EXPECT_EQ("new", test::readFile(other.path() + "/to"));
}

TEST_F(MoveAcrossTest, AFailureKeepsTheSourceAndLeavesNothing) {
    dir.write("from", test::patterned(200000));
    fs::create_directory(other.path() + "/folder");
    EXPECT_EQ(-1, moveAcross("from", "folder"));
    EXPECT_EQ(-1, moveAcross("from", "missing/to"));
    {
        const test::FileSizeLimit limit(100000);
        EXPECT_EQ(-1, moveAcross("from", "to"));
    }
    EXPECT_TRUE(test::patterned(200000) == read("from"));
    EXPECT_EQ("folder", test::listing(other.path()));
}

}  // namespace
