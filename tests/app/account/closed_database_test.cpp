// Databases that do not open, or take nothing: each cause has its own sentence and its own remedy, and is known before
// anything is written.
#include <sys/stat.h>

#include <filesystem>

#include "tests/app/fixture.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/snapshot.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class ClosedDatabase : public CommandTest {
protected:
    static constexpr const char* kKey = "correct horse";

    std::string keyFile(const std::string& key = kKey) const {
        std::string path = dir_.write("key", key);
        chmod(path.c_str(), 0600);
        return path;
    }
    void makeEncryptedSample() const {
        ASSERT_EXIT_CODE(0, sample("account", {"--messages", "20", "--conversations", "2", "--key-file", keyFile()}));
    }
    void makeSmallSample() const {
        ASSERT_EXIT_CODE(0, sample("account", {"--messages", "20", "--conversations", "2"}));
    }
    void writeDatabase(const std::string& bytes) const { dir_.write("account/db/imsg.db", bytes); }
    // Overwrites bytes of the account's main database.
    void forge(std::size_t place, const std::string& bytes) const {
        std::string whole = readFile(mainDatabase("account"));
        writeDatabase(whole.replace(place, bytes.size(), bytes));
    }

    void expectFailure(const std::string& reason, const std::string& remedy, const Outcome& run) const {
        EXPECT_EXIT_CODE(1, run);
        EXPECT_SAYS(mainDatabase("account"), run.err);
        EXPECT_SAYS("Reason: " + reason + "\n", run.err);
        EXPECT_SAYS("To do:  " + remedy, run.err);
    }
    void expectNoExport(const std::string& reason, const std::string& remedy, const Arguments& more = {}) const {
        expectFailure(reason, remedy, exportFrom("account", "package", more));
        EXPECT_FALSE(exists(at("package")));
    }
    // An import that fails has neither written to the account nor restored an attachment.
    void expectNoImport(const std::string& reason, const std::string& remedy) const {
        const std::string before = snapshotOf(at("account"));
        expectFailure(reason, remedy, importInto("account", "package"));
        EXPECT_TRUE(before == snapshotOf(at("account"))) << "the import changed the account";
    }
};

TEST_F(ClosedDatabase, ThatIsMissingAsksForTheRightFolder) {
    dir_.makeDir("account/db");
    expectNoExport("there is no such file", "give with --account the folder");
}

TEST_F(ClosedDatabase, WithAWrongKeyAsksForTheRightOne) {
    makeEncryptedSample();
    expectNoExport("the key does not fit, or the beginning of the file is damaged", "check the key",
                   {"--key-file", keyFile("wrong")});
}

TEST_F(ClosedDatabase, ThatIsEncryptedAsksForAKey) {
    makeEncryptedSample();
    expectNoExport("it is encrypted, and no key was given", "give the key with --key-file FILE");
}

TEST_F(ClosedDatabase, ThatIsNotEncryptedNeedsNoKey) {
    makeSmallSample();
    expectNoExport("it is not encrypted, but a key was given", "leave out --key-file", {"--key-file", keyFile()});
}

TEST_F(ClosedDatabase, ThatIsATextIsNoDatabase) {
    makeSmallSample();
    writeDatabase(std::string(4096, 'g'));
    expectNoExport("it is no database", "check --account");
}

TEST_F(ClosedDatabase, ThatIsNotMadeOfWholePagesIsNoDatabase) {
    makeSmallSample();
    writeDatabase(std::string(4000, '\xc3'));
    expectNoExport("it is no database", "check --account");
    expectNoExport("it is no database", "check --account", {"--key-file", keyFile()});
}

TEST_F(ClosedDatabase, ThatIsDamagedAsksForACopy) {
    makeSmallSample();
    forge(100, std::string(8, '\xff'));  // the header of the first page
    expectNoExport("it is damaged", "put a copy in its place");
}

TEST_F(ClosedDatabase, OfANewerFormatAsksForANewerProgram) {
    makeSmallSample();
    forge(18, "\x03\x03");  // the versions that a program must know to write and to read it
    expectNoExport("a newer version of the database engine wrote it", "use a newer version of chat-transfer");
}

TEST_F(ClosedDatabase, OfANewerSchemaFormatAsksForANewerProgram) {
    makeSmallSample();
    forge(47, "\x05");
    expectNoExport("a newer version of the database engine wrote it", "use a newer version of chat-transfer");
}

TEST_F(ClosedDatabase, ThatMayOnlyBeReadByNewerProgramsTakesNoImport) {
    makePackage("source", "package");
    makeSmallSample();
    forge(18, "\x03");
    expectNoImport("a newer version of the database engine wrote it", "use a newer version of chat-transfer");
}

TEST_F(ClosedDatabase, ThatAnotherProgramHoldsIsNotExported) {
    makeSmallSample();
    imsdk::dbUtils client;
    ASSERT_NE(0, client.open(mainDatabase("account").c_str(), nullptr));
    ASSERT_NE(0, client.excuteNonQuery("begin exclusive"));
    expectNoExport("another program holds it", "close the client, then run this again");
}

TEST_F(ClosedDatabase, ThatAnotherProgramIsWritingToTakesNoImport) {
    makePackage("source", "package");
    makeSmallSample();
    imsdk::dbUtils client;
    ASSERT_NE(0, client.open(mainDatabase("account").c_str(), nullptr));
    client.beginTransaction();
    const std::string before = snapshotOf(at("account/file")) + snapshotOf(at("account/image"));
    expectFailure("another program holds it", "close the client, then run this again",
                  importInto("account", "package"));
    EXPECT_TRUE(before == snapshotOf(at("account/file")) + snapshotOf(at("account/image")));
}

// The rights of root would open everything.
class ForbiddenDatabase : public ClosedDatabase {
protected:
    void SetUp() override {
        makePackage("source", "package");
        makeSmallSample();
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(dir_.path()))
            fs::permissions(entry, entry.is_directory() ? fs::perms(0755) : fs::perms(0644));
        fs::permissions(dir_.path(), fs::perms(0755));
    }
};

TEST_F(ForbiddenDatabase, ThatMayNotBeReadAsksForPermissions) {
    fs::permissions(mainDatabase("account"), fs::perms::none);
    const OrdinaryUser user;
    expectFailure("it may not be read", "check that it is a file, and its permissions",
                  exportFrom("account", "elsewhere"));
}

TEST_F(ForbiddenDatabase, ThatMayNotBeWrittenTakesNoImport) {
    fs::permissions(mainDatabase("account"), fs::perms(0444));
    const OrdinaryUser user;
    expectNoImport("it, or the folder that it is in, may not be written to", "check the permissions of both");
}

TEST_F(ForbiddenDatabase, InAFolderThatMayNotBeWrittenTakesNoImport) {
    fs::permissions(mainDatabase("account"), fs::perms(0666));
    fs::permissions(at("account/db"), fs::perms(0555));
    const OrdinaryUser user;
    expectNoImport("it, or the folder that it is in, may not be written to", "check the permissions of both");
}

}  // namespace
}  // namespace test
