// Where keys come from, and that they go nowhere.
#include <sys/stat.h>

#include "tests/app/fixture.h"

namespace test {
namespace {

constexpr const char* kKey = "Tr0ub4dor&3";

class Key : public CommandTest {
protected:
    std::string keyFile(const std::string& bytes, mode_t mode = 0600) const {
        std::string path = dir_.write("key", bytes);
        chmod(path.c_str(), mode);
        return path;
    }

    void makeEncryptedSample() const {
        const std::string path = keyFile(std::string(kKey) + "\n");
        ASSERT_EXIT_CODE(0, sample("account", {"--conversations", "2", "--messages", "20", "--key-file", path}));
    }

    // An export is what needs the key; each goes into a package of its own.
    Outcome exportWith(const Arguments& more, const Setting& setting = {}) {
        return exportFrom("account", "package" + std::to_string(++exports_), more, setting);
    }

private:
    int exports_ = 0;
};

TEST_F(Key, OfASampleEncryptsAllThreeDatabases) {
    makeEncryptedSample();
    for (const char* name : {"imsg.db", "backimsg.db", "plugin/kab.db"}) {
        const std::string path = at(std::string("account/db/") + name);
        imsdk::dbUtils db;
        EXPECT_EQ(0, db.open(path.c_str(), nullptr)) << name;
        EXPECT_EQ(0, db.open(path.c_str(), "another")) << name;
        EXPECT_NE(0, db.open(path.c_str(), kKey)) << name;
    }
}

TEST_F(Key, FileMayEndInALineEndOfEitherKindOrNone) {
    makeEncryptedSample();
    for (const char* end : {"", "\n", "\r\n"})
        expectSuccess(exportWith({"--key-file", keyFile(kKey + std::string(end))}));
}

TEST_F(Key, OnlyOneLineEndBelongsToTheFile) {
    makeEncryptedSample();
    EXPECT_EXIT_CODE(1, exportWith({"--key-file", keyFile(kKey + std::string("\n\n"))}));
}

TEST_F(Key, ComesFromTheEnvironment) {
    makeEncryptedSample();
    EXPECT_EXIT_CODE(0, exportWith({}, {{std::string("CHAT_TRANSFER_KEY=") + kKey}}));
}

TEST_F(Key, FileGoesBeforeTheEnvironment) {
    makeEncryptedSample();
    EXPECT_EXIT_CODE(0, exportWith({"--key-file", keyFile(kKey)}, {{"CHAT_TRANSFER_KEY=wrong"}}));
}

TEST_F(Key, FileThatOthersMayReadIsWarnedOf) {
    makeEncryptedSample();
    const Outcome open = expectSuccess(exportWith({"--key-file", keyFile(kKey, 0644)}));
    EXPECT_SAYS("chmod 600", open.err);
    EXPECT_SAYS_NOT("chmod 600", exportWith({"--key-file", keyFile(kKey, 0600)}).err);
}

TEST_F(Key, FileThatHoldsNoUsableKeyIsRefused) {
    makeEncryptedSample();
    for (const std::string& bytes :
         {std::string(), std::string("\n"), std::string("a\0b", 3), std::string(5000, 'k')}) {
        expectFailure(exportWith({"--key-file", keyFile(bytes)}), {"The key file cannot be used"});
    }
}

TEST_F(Key, FileThatIsMissingOrAFolderIsNamed) {
    makeEncryptedSample();
    for (const std::string& path : {at("nowhere"), at("account")})
        expectFailure(exportWith({"--key-file", path}), {"The key file cannot be read", path});
}

TEST_F(Key, ThatIsWrongFailsWithTheCodeAndAnAdvice) {
    makeEncryptedSample();
    expectFailure(exportWith({"--key-file", keyFile("wrong")}),
                  {"0xff00001f (a database could not be opened or written)", mainDatabase("account"), "check the key"});
}

TEST_F(Key, ThatIsMissingIsAskedForInWords) {
    makeEncryptedSample();
    expectFailure(exportWith({}), {"no key was given", "--key-file"});
}

TEST_F(Key, ForAPlainDatabaseIsNamedAsTheMistake) {
    makeSample("account");
    expectFailure(exportWith({"--key-file", keyFile(kKey)}), {"it is not encrypted, but a key was given"});
}

TEST_F(Key, AsAnArgumentIsRefusedWithoutRepeatingIt) {
    for (const Arguments& attempt : {Arguments{"--key", kKey}, Arguments{std::string("--key=") + kKey},
                                     Arguments{"-k", kKey}, Arguments{"--password", kKey}}) {
        const Outcome run = expectUsageError(exportWith(attempt), {"a key is never an argument"});
        EXPECT_SAYS_NOT(kKey, run.all());
    }
}

TEST_F(Key, IsShownByNoCommand) {
    makeEncryptedSample();
    const std::string path = keyFile(kKey);
    std::string shown = exportFrom("account", "package", {"--key-file", path}).all();
    shown += importInto("copy", "package", {"--key-file", path}).all();
    shown += verify("package", "copy", {"--key-file", path}).all();
    shown += verify("package", "copy", {"--key-file", keyFile(std::string(kKey) + "x")}).all();
    EXPECT_SAYS_NOT(kKey, shown);
}

TEST_F(Key, IsAskedForOnATerminalWithoutEcho) {
    makeEncryptedSample();
    const Outcome run = expectSuccess(exportOnTerminal({{"Key of the account: ", kKey + std::string("\r")}}));
    EXPECT_SAYS_NOT(kKey, run.out);
    EXPECT_TRUE(hasPackage("package"));
}

TEST_F(Key, CanBeCorrectedWhileItIsTyped) {
    makeEncryptedSample();
    expectSuccess(exportOnTerminal({{"Key of the account: ", std::string(kKey) + "xé\x7f\x7f\r"}}));
}

TEST_F(Key, PromptIsCancelledByControlC) {
    makeEncryptedSample();
    const Outcome run = expectFailure(exportOnTerminal({{"Key of the account: ", "abc\x03"}}));
    EXPECT_SAYS("No key was given", run.out);
    EXPECT_FALSE(hasPackage("package"));
}

TEST_F(Key, ThatIsNewIsAskedForTwice) {
    const Outcome run = expectFailure(
        chatTransferOnTerminal({"sample", "--account", at("new"), "--user", kUser, "--messages", "5", "--ask-key"},
                               {{"Key of the account: ", "first\r"}, {"The same key again: ", "second\r"}}));
    EXPECT_SAYS("the two texts differ", run.out);
    EXPECT_FALSE(exists(at("new/db/imsg.db")));
}

TEST_F(Key, CannotBeAskedForWithoutATerminal) {
    makeEncryptedSample();
    expectFailure(exportWith({"--ask-key"}), {"there is no terminal"});
}

}  // namespace
}  // namespace test
