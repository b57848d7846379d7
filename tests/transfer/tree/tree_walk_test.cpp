// getfiles, getsubdirs, getTargetIDFromePath, unixdel_dir: finding and decrypting the files of a tree.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tests/transfer/tree/tree_fixture.h"

namespace fs = std::filesystem;
using test::exists;
using test::readFile;

namespace {

class TreeWalk : public test::TreeTest {
protected:
    TreeWalk() { useKey("the key of the tree"); }

    /// The paths found below the tree, the tree's own path taken away.
    std::vector<std::string> walk(const std::string& extension = ".mg") {
        const std::string root = transfer.backupPath + "/qelbackup/1001";
        std::vector<std::string> paths;
        EXPECT_EQ(1, transfer.getfiles(root, paths, extension));
        for (std::string& path : paths) {
            EXPECT_EQ(0, path.compare(0, root.size() + 1, root + "/"));
            path.erase(0, root.size() + 1);
        }
        return paths;
    }
};

using Paths = std::vector<std::string>;

TEST_F(TreeWalk, FindsNothingInAMissingFolder) {
    Paths paths;
    EXPECT_EQ(1, transfer.getfiles(home.at("nowhere"), paths, ".mg"));
    EXPECT_TRUE(paths.empty());
    EXPECT_EQ(0, transfer.report.skippedCount);
}

TEST_F(TreeWalk, DecryptsAFileBesideItselfAndRemovesTheEncryptedOne) {
    const std::string encrypted = addEncrypted("a/7/x.mg", "secret");
    EXPECT_EQ(Paths{"a/7/x.mg.decrypt"}, walk());
    EXPECT_FALSE(exists(encrypted));
    EXPECT_EQ("secret", readFile(tree("a/7/x.mg.decrypt")));
    EXPECT_EQ("x.mg.decrypt", test::listing(tree("a/7")));
}

TEST_F(TreeWalk, TakesDecryptedCopiesOfAnEarlierWalkAsTheyAre) {
    addEncrypted("7/x.mg", "secret");
    walk();
    useKey("another key");
    EXPECT_EQ(Paths{"7/x.mg.decrypt"}, walk());
    EXPECT_EQ(0, transfer.report.skippedCount);
}

TEST_F(TreeWalk, LeavesAFileThatCannotBeDecryptedAndSaysWhy) {
    const std::string encrypted = addEncrypted("7/x.mg", "secret");
    useKey("a wrong key");
    EXPECT_EQ(Paths{}, walk());
    EXPECT_EQ("x.mg", test::listing(tree("7")));
    EXPECT_EQ("cannot be decrypted: wrong key, or the file is damaged, cut or extended", skipReason(encrypted));
}

TEST_F(TreeWalk, DecryptsNothingWithoutAKey) {
    addEncrypted("7/x.mg", "secret");
    useKey("");
    EXPECT_EQ(Paths{}, walk());
    EXPECT_EQ("cannot be decrypted: no key", skipReason("7/x.mg"));
    EXPECT_TRUE(exists(tree("7/x.mg")));
}

TEST_F(TreeWalk, LeavesAFileThatWasCutShort) {
    const std::string path = addEncrypted("7/x.mg", "secret");
    fs::resize_file(path, fs::file_size(path) - 1);
    EXPECT_EQ(Paths{}, walk());
    EXPECT_EQ("x.mg", test::listing(tree("7")));
}

TEST_F(TreeWalk, LeavesAFileThatWasNeverEncrypted) {
    home.write("backup/qelbackup/1001/7/x.mg", "{}");
    EXPECT_EQ(Paths{}, walk());
    EXPECT_EQ("{}", readFile(tree("7/x.mg")));
    EXPECT_EQ("cannot be decrypted: not an encrypted file", skipReason("7/x.mg"));
}

TEST_F(TreeWalk, UsesTheKeyUpToItsFirstNul) {
    useKey("key");
    addEncrypted("7/x.mg", "secret");
    useKey(std::string("key\0and more", 12));
    EXPECT_EQ(Paths{"7/x.mg.decrypt"}, walk());
}

TEST_F(TreeWalk, LeavesFilesOfOtherExtensionsAlone) {
    addDecrypted("7/ab.mg", "text");
    addEncrypted("7/cd.mg", "secret");
    EXPECT_EQ(Paths{}, walk(".nt"));
    EXPECT_EQ("ab.mg.decrypt cd.mg", test::listing(tree("7")));
}

TEST_F(TreeWalk, AppendsToTheListItIsGiven) {
    addDecrypted("7/x.mg", "text");
    Paths paths{"before"};
    transfer.getfiles(tree("7"), paths, ".mg");
    EXPECT_EQ((Paths{"before", tree("7/x.mg.decrypt")}), paths);
}

TEST_F(TreeWalk, JoinsFolderAndNameWithASlashWhateverTheFolderEndsIn) {
    addDecrypted("7/x.mg", "text");
    Paths paths;
    transfer.getfiles(tree("7/"), paths, ".mg");
    EXPECT_EQ(Paths{tree("7//x.mg.decrypt")}, paths);
}

TEST_F(TreeWalk, ComparesTheEndOfTheNameOnly) {
    addDecrypted("7/", "text");  // the name ".decrypt"
    addDecrypted("7/g", "text");
    addDecrypted("7/mg", "text");
    addDecrypted("7/.mg", "text");
    addDecrypted("7/a.mgx", "text");
    addDecrypted("7/b.MG", "text");
    home.write("backup/qelbackup/1001/7/c.mg.decrypt.bak", "text");
    EXPECT_EQ(Paths{"7/.mg.decrypt"}, walk());
}

TEST_F(TreeWalk, DecryptsAFileWhoseWholeNameIsTheExtension) {
    addEncrypted("7/.mg", "secret");
    EXPECT_EQ(Paths{"7/.mg.decrypt"}, walk());
}

TEST_F(TreeWalk, FindsNothingForAnExtensionThatIsNotThreeBytesLong) {
    addEncrypted("7/x.mg", "secret");
    addDecrypted("7/y.mg", "text");
    for (const char* extension : {"", ".", ".m", ".mgx", "x.mg", "a very long extension"})
        EXPECT_EQ(Paths{}, walk(extension)) << extension;
    EXPECT_EQ("x.mg y.mg.decrypt", test::listing(tree("7")));
}

TEST_F(TreeWalk, ListsAPathTwiceWhenBothCopiesAreThere) {
    addDecrypted("7/x.mg", "old");
    addEncrypted("7/x.mg", "new");
    EXPECT_EQ((Paths{"7/x.mg.decrypt", "7/x.mg.decrypt"}), walk());
    EXPECT_EQ("new", readFile(tree("7/x.mg.decrypt")));
}

TEST_F(TreeWalk, GoesIntoAFolderThatIsNamedLikeAFile) {
    addDecrypted("x.mg/a.mg", "text");
    addDecrypted("y.mg.decrypt/b.mg", "text");
    Paths found = walk();
    std::sort(found.begin(), found.end());
    EXPECT_EQ((Paths{"x.mg/a.mg.decrypt", "y.mg.decrypt/b.mg.decrypt"}), found);
}

TEST_F(TreeWalk, DoesNotFollowALinkToAFolder) {
    home.write("elsewhere/7/x.mg.decrypt", "text");
    test::makeLink(home.at("elsewhere"), tree("link"));
    test::makeLink(home.at("elsewhere"), tree("folder.mg"));
    EXPECT_EQ(Paths{}, walk());
}

TEST_F(TreeWalk, DoesNotFollowALinkToAFile) {
    const std::string real = addEncrypted("../../real", "secret");
    test::makeLink(real, tree("7/x.mg"));
    EXPECT_EQ(Paths{}, walk());
    EXPECT_EQ("cannot be decrypted: input is not a regular file", skipReason("7/x.mg"));
    EXPECT_TRUE(exists(real));
    EXPECT_EQ("x.mg", test::listing(tree("7")));
}

TEST_F(TreeWalk, ListsALinkThatIsNamedLikeADecryptedFile) {
    test::makeLink(home.at("anything"), tree("7/x.mg.decrypt"));
    EXPECT_EQ(Paths{"7/x.mg.decrypt"}, walk());
}

TEST_F(TreeWalk, NeverWaitsForAFifo) {
    test::makeFifo(tree("7/x.mg"));
    EXPECT_EQ(Paths{}, walk());
    EXPECT_EQ("cannot be decrypted: input is not a regular file", skipReason("7/x.mg"));
}

TEST_F(TreeWalk, LeavesSocketsAlone) {
    fs::create_directories(tree("7"));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(tree("7/x.mg").size(), sizeof address.sun_path);
    tree("7/x.mg").copy(address.sun_path, sizeof address.sun_path - 1);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
    EXPECT_EQ(0, bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    EXPECT_EQ(Paths{}, walk());
    EXPECT_TRUE(exists(tree("7/x.mg")));
    close(descriptor);
}

TEST_F(TreeWalk, LeavesAFileWhoseDecryptedNameWouldBeTooLong) {
    const std::string name = "7/" + std::string(250, 'n') + ".mg";
    addEncrypted(name, "secret");
    EXPECT_EQ(Paths{}, walk());
    EXPECT_TRUE(exists(tree(name)));
    EXPECT_EQ("cannot be decrypted: cannot write output: File name too long", skipReason(name));
}

// What a plain recursion finds, in the order in which the system lists each folder.
void listRecursively(const std::string& folder, Paths& paths) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        if (entry.is_directory()) {
            listRecursively(entry.path().string(), paths);
        } else {
            paths.push_back(entry.path().string());
        }
    }
}

TEST_F(TreeWalk, GoesDepthFirstInTheOrderOfTheSystem) {
    for (int i = 0; i < 40; ++i) {
        addDecrypted(std::to_string(i % 5) + "/" + std::to_string(i % 3) + "/" + std::to_string(i) + ".mg", "text");
        addDecrypted(std::to_string(i % 5) + "/" + std::to_string(i) + ".mg", "text");
    }
    Paths expected;
    Paths found;
    listRecursively(tree("."), expected);
    transfer.getfiles(tree("."), found, ".mg");
    ASSERT_EQ(80U, found.size());
    EXPECT_EQ(expected, found);
}

TEST_F(TreeWalk, GoesDownAnyDepthWithFewOpenFiles) {
    std::string deep;
    for (int i = 0; i < 500; ++i)
        deep += "d/";
    addDecrypted(deep + "x.mg", "text");
    const test::OpenFileLimit limit(32);
    EXPECT_EQ(Paths{deep + "x.mg.decrypt"}, walk());
}

// Makes folders of which the whole path passes what the system takes in one call.
void makeVeryDeepFolder(const std::string& path, int levels) {
    const std::string name(200, 'd');
    int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < levels; ++i) {
        ASSERT_EQ(0, mkdirat(folder, name.c_str(), 0700));
        const int next = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
        close(folder);
        folder = next;
    }
    close(folder);
}

TEST_F(TreeWalk, NamesAFolderThatItCannotReach) {
    addDecrypted("7/x.mg", "text");
    makeVeryDeepFolder(tree("7"), 30);
    EXPECT_EQ(Paths{"7/x.mg.decrypt"}, walk());
    ASSERT_EQ(1, transfer.report.skippedCount);
    EXPECT_EQ("cannot be searched for .mg files: File name too long", transfer.report.skipped[0].reason);
}

TEST_F(TreeWalk, ListsTheFoldersOfOneLevel) {
    home.makeDir("top/b/deeper");
    home.makeDir("top/a");
    home.write("top/file", "text");
    test::makeLink(home.at("top/a"), home.at("top/link"));
    Paths folders{"before"};
    EXPECT_EQ(1, transfer.getsubdirs(home.at("top"), folders));
    std::sort(folders.begin() + 1, folders.end());
    EXPECT_EQ((Paths{"before", home.at("top/a"), home.at("top/b")}), folders);
}

TEST_F(TreeWalk, ListsNoFoldersOfAMissingOne) {
    Paths folders;
    EXPECT_EQ(1, transfer.getsubdirs(home.at("nowhere"), folders));
    EXPECT_TRUE(folders.empty());
}

TEST_F(TreeWalk, RemovesATree) {
    std::string path = home.makeDir("gone");
    home.write("gone/a/b", "text");
    home.write("kept/c", "text");
    test::makeLink(home.at("kept"), home.at("gone/link"));
    EXPECT_TRUE(transfer.unixdel_dir(path.data()));
    EXPECT_FALSE(exists(path));
    EXPECT_TRUE(exists(home.at("kept/c")));
}

TEST_F(TreeWalk, RemovesNothingThatIsNoFolder) {
    std::string missing = home.at("nowhere");
    std::string file = home.write("file", "text");
    EXPECT_FALSE(transfer.unixdel_dir(missing.data()));
    EXPECT_FALSE(transfer.unixdel_dir(file.data()));
    EXPECT_FALSE(transfer.unixdel_dir(nullptr));
    EXPECT_TRUE(exists(file));
}

struct PathCase {
    const char* path;
    long long conversation;
};

class ConversationOfPath : public ::testing::TestWithParam<PathCase> {};

TEST_P(ConversationOfPath, IsTheLastNumberBeforeTheLastSeparator) {
    std::string path = GetParam().path;
    EXPECT_EQ(GetParam().conversation, dbTrans().getTargetIDFromePath(path));
    EXPECT_EQ(GetParam().path, path);
}

INSTANTIATE_TEST_SUITE_P(Paths, ConversationOfPath,
                         ::testing::Values(PathCase{"/d/qelbackup/u/123456/x.mg.decrypt", 123456},
                                           PathCase{"/d/chat_42x/f.mg", 42}, PathCase{"/d/7/abc/f.mg", 7},
                                           PathCase{"/d/1/2/f9.mg", 2}, PathCase{"/d/12ab34/f.mg", 34},
                                           PathCase{"/d/7//f.mg", 7}, PathCase{"/d/0/f.mg", 0},
                                           PathCase{"/d/007/f.mg", 7}, PathCase{"/d/-5/f.mg", 5},
                                           PathCase{"/1/f.mg", 1}, PathCase{"a1/f.mg", 1},
                                           PathCase{"C:\\d\\55\\f.mg", 55}));

INSTANTIATE_TEST_SUITE_P(PathsWithoutConversation, ConversationOfPath,
                         ::testing::Values(PathCase{"/d/e/f.mg", -1}, PathCase{"123/f.mg", -1}, PathCase{"f.mg", -1},
                                           PathCase{"5.mg", -1}, PathCase{"/5.mg", -1}, PathCase{"", -1},
                                           PathCase{"/", -1}, PathCase{"12/ab/f.mg", -1},
                                           // A "/" anywhere makes a "\" an ordinary character.
                                           PathCase{"/d\\55\\f.mg", -1}));

INSTANTIATE_TEST_SUITE_P(PathsWithHugeNumbers, ConversationOfPath,
                         ::testing::Values(PathCase{"/d/9223372036854775807/f", 9223372036854775807LL},
                                           PathCase{"/d/9223372036854775808/f", 9223372036854775807LL},
                                           PathCase{"/d/12345678901234567890123/f", 9223372036854775807LL}));

}  // namespace
