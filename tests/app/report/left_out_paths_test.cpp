// Left-out files are named by paths that begin as the person wrote them, on the terminal and in the report of the run.
#include <filesystem>

#include "host/json/json_owner.h"
#include "tests/app/tree_command_fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class LeftOutPaths : public TreeCommandTest {
protected:
    // The command in the folder of the test, with a report.
    Outcome here(Arguments arguments, const Arguments& more = {}) const {
        arguments.insert(arguments.end(), {"--user", kUser, "--report", at("report.json")});
        return chatTransfer(joined(arguments, more), {{}, 0, at("")});
    }

    Arguments importFrom(const std::string& from) const { return {"import", "--from", from, "--account", "copy"}; }

    Arguments importTreeFrom(const std::string& from) const {
        return {"import-tree", "--from", from, "--account", "copy", "--key-file", at("key")};
    }

    // The first left-out thing in the report.
    std::string reported() const {
        const tools::JsonDocument document(json_parse_file(at("report.json").c_str()));
        const JSON_Array* named = json_object_dotget_array(json_value_get_object(document.get()), "leftOut.named");
        const char* what = json_object_get_string(json_array_get_object(named, 0), "what");
        return what != nullptr ? what : "";
    }

    void makeDamagedPackage() const {
        makePackage("account", "package");
        dir_.write(messagePath("package/qelmsg_0"), "{\"version\":");
    }

    void makeDamagedTree() const {
        makeTree("backup");
        dir_.write(treePath("backup"), "not encrypted");
    }

    static std::string messagePath(const std::string& package) {
        return package + "/messages_0/" + kUser + "/msg_1.mg";
    }
    static std::string treePath(const std::string& backup) { return backup + "/qelbackup/" + kUser + "/2002/a.mg"; }
};

TEST_F(LeftOutPaths, OfAPackageBeginWithTheFolderThatHoldsIt) {
    makeDamagedPackage();
    const Outcome run = here(importFrom("package"));
    EXPECT_SAYS("  " + messagePath("package/qelmsg_0") + ": the message file is not a JSON object", run.err);
    EXPECT_EQ(messagePath("package/qelmsg_0"), reported());
}

TEST_F(LeftOutPaths, OfAPackageThatWasGivenItselfBeginWithIt) {
    makeDamagedPackage();
    const Outcome run = here(importFrom("./package/../package/qelmsg_0/"));
    EXPECT_SAYS("  " + messagePath("./package/../package/qelmsg_0") + ": ", run.err);
    EXPECT_EQ(messagePath("./package/../package/qelmsg_0"), reported());
}

TEST_F(LeftOutPaths, OfAPackageBehindALinkBeginWithTheLink) {
    makeDamagedPackage();
    fs::create_directory_symlink(at("package"), at("link"));
    here(importFrom(at("link")));
    EXPECT_EQ(messagePath(at("link/qelmsg_0")), reported());
}

TEST_F(LeftOutPaths, OfThePagesOfAPackageBeginAsGiven) {
    makeDamagedPackage();
    const Outcome run = here({"view", "--from", "package", "--to", "pages"});
    EXPECT_SAYS("  " + messagePath("package/qelmsg_0") + ": is not JSON of this format", run.err);
    EXPECT_EQ(messagePath("package/qelmsg_0"), reported());
}

TEST_F(LeftOutPaths, OfATreeBeginAsGivenWithoutADoubledSlash) {
    makeDamagedTree();
    const Outcome run = here(importTreeFrom("backup"));
    EXPECT_SAYS("  " + treePath("backup") + ": cannot be decrypted: not an encrypted file", run.err);
    EXPECT_EQ(treePath("backup"), reported());
    EXPECT_SAYS_NOT("//", run.err);
}

TEST_F(LeftOutPaths, OfATreeThatWasGivenAsQelbackupBeginWithIt) {
    makeDamagedTree();
    here(importTreeFrom("backup/qelbackup"));
    EXPECT_EQ(treePath("backup"), reported());
}

TEST_F(LeftOutPaths, OfADryRunAreThoseOfTheTreeItself) {
    makeDamagedTree();
    here(importTreeFrom("backup"), {"--dry-run"});
    EXPECT_EQ(treePath("backup"), reported());
}

TEST_F(LeftOutPaths, OfADryRunAreAlsoThoseOfFilesThatItCannotCopy) {
    makeTree("backup");
    fs::remove(at(treePath("backup")));
    fs::create_symlink(at("key"), at(treePath("backup")));
    const Outcome run = here(importTreeFrom("backup"), {"--dry-run"});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_EQ("1", rowOf(run.out, "Files not decryptable"));
    EXPECT_EQ("0", rowOf(run.out, "Files not parsable"));
    EXPECT_EQ(treePath("backup"), reported());
}

TEST_F(LeftOutPaths, OfATreeThatCannotBeReadAtAllBeginAsGiven) {
    makeTree("backup");
    const Outcome run = here({"import-tree", "--from", "backup", "--account", "copy", "--key-file", otherKey()});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS("  " + treePath("backup") + ": cannot be decrypted", run.err);
    EXPECT_SAYS_NOT("./qelbackup", run.err);
}

TEST_F(LeftOutPaths, OfAFileOfAnotherVersionBeginAsGiven) {
    makePlainTree("plain");
    dir_.write("plain/notes.nt", R"({"version": "9", "note": []})");
    ASSERT_EXIT_CODE(0, encryptTree("plain", "backup"));
    const Outcome run = here(importTreeFrom("backup"));
    EXPECT_SAYS(std::string("backup/qelbackup/") + kUser + "/notes.nt.decrypt", run.err);
    EXPECT_SAYS_NOT("./qelbackup", run.err);
}

TEST_F(LeftOutPaths, OfAnExportThatFailsMeanThePackageUnderItsName) {
    makeSample("account");
    const Outcome run =
        chatTransfer({"export", "--account", "account", "--to", "new", "--user", kUser}, {{}, 5000, at("")});
    EXPECT_EXIT_CODE(1, run);
    EXPECT_SAYS(std::string("new/qelmsg_0/messages_0/") + kUser + "/msg_", run.err);
    EXPECT_SAYS_NOT("./qelmsg_0", run.err);
}

}  // namespace
}  // namespace test
