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
    for (const char* end : {"", "\n", "\r\n"}) {
        const Outcome run = exportWith({"--key-file", keyFile(kKey + std::string(end))});
        EXPECT_EXIT_CODE(0, run);
    }
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
    const Outcome open = exportWith({"--key-file", keyFile(kKey, 0644)});
    EXPECT_EXIT_CODE(0, open);
    EXPECT_SAYS("chmod 600", open.err);
    EXPECT_SAYS_NOT("chmod 600", exportWith({"--key-file", keyFile(kKey, 0600)}).err);
}

TEST_F(Key, FileThatHoldsNoUsableKeyIsRefused) {
    makeEncryptedSample();
    for (const std::string& bytes :
         {std::string(), std::string("\n"), std::string("a\0b", 3), std::string(5000, 'k')}) {
        const Outcome run = exportWith({"--key-file", keyFile(bytes)});
        EXPECT_EXIT_CODE(1, run);
        EXPECT_SAYS("The key file cannot be used", run.err);
    }
}

TEST_F(Key, FileThatIsMissingOrAFolderIsNamed) {
    makeEncryptedSample();
    for (const std::string& path : {at("nowhere"), at("account")}) {
        const Outcome run = exportWith({"--key-file", path});
        EXPECT_EXIT_CODE(1, run);
        EXPECT_SAYS("The key file cannot be read", run.err);
        EXPECT_SAYS(path, run.err);
    }
}

TEST_F(Key, ThatIsWrongFailsWithTheCodeAndAnAdvice) {
    makeEncryptedSample();
    const Outcome run = exportWith({"--key-file", keyFile("wrong")});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("0xff00001f (a database could not be opened or written)", run.err);
    EXPECT_SAYS(mainDatabase("account"), run.err);
    EXPECT_SAYS("check the key", run.err);
}

TEST_F(Key, ThatIsMissingIsAskedForInWords) {
    makeEncryptedSample();
    const Outcome run = exportWith({});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("no key was given", run.err);
    EXPECT_SAYS("--key-file", run.err);
}

TEST_F(Key, ForAPlainDatabaseIsNamedAsTheMistake) {
    makeSample("account");
    const Outcome run = exportWith({"--key-file", keyFile(kKey)});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("it is not encrypted, but a key was given", run.err);
}

TEST_F(Key, AsAnArgumentIsRefusedWithoutRepeatingIt) {
    for (const Arguments& attempt : {Arguments{"--key", kKey}, Arguments{std::string("--key=") + kKey},
                                     Arguments{"-k", kKey}, Arguments{"--password", kKey}}) {
        const Outcome run = exportWith(attempt);
        EXPECT_EXIT_CODE(2, run);
        EXPECT_SAYS("a key is never an argument", run.err);
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
    const Outcome run =
        chatTransferOnTerminal({"export", "--account", at("account"), "--user", kUser, "--to", at("package")},
                               {{"Key of the account: ", kKey + std::string("\r")}});
    EXPECT_EXIT_CODE(0, run);
    EXPECT_SAYS_NOT(kKey, run.out);
    EXPECT_TRUE(hasPackage("package"));
}

TEST_F(Key, CanBeCorrectedWhileItIsTyped) {
    makeEncryptedSample();
    const Outcome run =
        chatTransferOnTerminal({"export", "--account", at("account"), "--user", kUser, "--to", at("package")},
                               {{"Key of the account: ", std::string(kKey) + "xé\x7f\x7f\r"}});
    EXPECT_EXIT_CODE(0, run);
}

TEST_F(Key, PromptIsCancelledByControlC) {
    makeEncryptedSample();
    const Outcome run =
        chatTransferOnTerminal({"export", "--account", at("account"), "--user", kUser, "--to", at("package")},
                               {{"Key of the account: ", "abc\x03"}});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("No key was given", run.out);
    EXPECT_FALSE(hasPackage("package"));
}

TEST_F(Key, ThatIsNewIsAskedForTwice) {
    const Outcome run =
        chatTransferOnTerminal({"sample", "--account", at("new"), "--user", kUser, "--messages", "5", "--ask-key"},
                               {{"Key of the account: ", "first\r"}, {"The same key again: ", "second\r"}});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("the two texts differ", run.out);
    EXPECT_FALSE(exists(at("new/db/imsg.db")));
}

TEST_F(Key, CannotBeAskedForWithoutATerminal) {
    makeEncryptedSample();
    const Outcome run = exportWith({"--ask-key"});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("there is no terminal", run.err);
}

}  // namespace
}  // namespace test
