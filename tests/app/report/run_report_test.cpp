// --report: what the document says, and when and where it is written. That it obeys its schema is tested in tests/docs.
#include <sys/stat.h>

#include <filesystem>

#include "host/json/json_owner.h"
#include "tests/app/fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class RunReport : public CommandTest {
protected:
    std::string report() const { return at("report.json"); }
    Arguments reported() const { return {"--report", report()}; }

    // The number or text at a path such as "summary.messages.read", as text; empty when there is none.
    std::string said(const std::string& path) const {
        const tools::JsonDocument document(json_parse_file(report().c_str()));
        const JSON_Object* object = json_value_get_object(document.get());
        const JSON_Value* value = json_object_dotget_value(object, path.c_str());
        if (json_value_get_type(value) == JSONNumber)
            return std::to_string(static_cast<long long>(json_value_get_number(value)));
        if (json_value_get_type(value) == JSONBoolean) return json_value_get_boolean(value) == 1 ? "true" : "false";
        const char* text = json_value_get_string(value);
        return text != nullptr ? text : "";
    }

    void expectSaid(const std::vector<std::pair<std::string, std::string>>& members) const {
        for (const auto& [path, value] : members)
            EXPECT_EQ(value, said(path)) << path;
    }

    // The texts of the member `key` of the objects in a list.
    std::vector<std::string> listed(const std::string& path, const std::string& key) const {
        const tools::JsonDocument document(json_parse_file(report().c_str()));
        const JSON_Array* array = json_object_dotget_array(json_value_get_object(document.get()), path.c_str());
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < json_array_get_count(array); ++i) {
            const char* text = json_object_get_string(json_array_get_object(array, i), key.c_str());
            texts.emplace_back(text != nullptr ? text : "");
        }
        return texts;
    }

    static std::uintmax_t bytesBelow(const std::string& folder) {
        std::uintmax_t bytes = 0;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
            bytes += entry.is_regular_file() ? entry.file_size() : 0;
        return bytes;
    }
};

TEST_F(RunReport, OfAnExportSaysWhatTheTableSays) {
    makeSample("account");
    const Outcome run = exportFrom("account", "package", reported());
    ASSERT_EXIT_CODE(0, run);
    expectSaid({{"command", "export"},
                {"outcome", "done"},
                {"exitCode", "0"},
                {"resultCode", "0x00000000"},
                {"dryRun", "false"}});
    for (const auto& [key, label] :
         std::vector<std::pair<std::string, std::string>>{{"messages.read", "Messages read"},
                                                          {"messages.written", "Messages written"},
                                                          {"conversations.all", "Conversations"},
                                                          {"days", "Days"},
                                                          {"files.messages", "Message files"},
                                                          {"recentContacts.written", "Recent contacts"},
                                                          {"attachments.referenced", "Attachments referenced"},
                                                          {"attachments.copied", "Attachments copied"},
                                                          {"attachments.missing", "Attachments missing"},
                                                          {"attachments.refused", "Attachments refused"}}) {
        EXPECT_EQ(rowOf(run.out, label), said("summary." + key)) << key;
    }
    EXPECT_EQ("300", said("summary.messages.read"));
    EXPECT_EQ(std::to_string(bytesBelow(at("package/qelmsg_0"))), said("summary.bytes"));
}

TEST_F(RunReport, NamesThePhasesInTheirOrder) {
    makeSample("account");
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", reported()));
    const std::vector<std::string> expected = {"Reading the messages", "Writing the package", "Writing message files",
                                               "Copying attachments", "Flushing to the disk"};
    EXPECT_EQ(expected, listed("phases", "name"));
}

TEST_F(RunReport, OfAnImportCountsDuplicatesAndAttachmentsThatAreThere) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    ASSERT_EXIT_CODE(0, importInto("copy", "package", reported()));
    expectSaid({{"summary.messages.written", "0"},
                {"summary.messages.duplicate", "300"},
                {"summary.attachments.referenced", "4"},
                {"summary.attachments.alreadyThere", "3"},
                {"summary.attachments.copied", "1"}});
}

TEST_F(RunReport, GivesTheKindAndTheReasonOfWhatWasLeftOut) {
    makeSample("account");
    fs::remove_all(at("account/image"));
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", reported()));
    EXPECT_EQ("2", said("leftOut.count"));
    EXPECT_EQ("2", said("summary.attachments.missing"));
    const std::vector<std::string> reasons = {"the attachment is missing", "the attachment is missing"};
    EXPECT_EQ(reasons, listed("leftOut.named", "reason"));
    const std::vector<std::string> kinds = {"attachmentMissing", "attachmentMissing"};
    EXPECT_EQ(kinds, listed("leftOut.named", "kind"));
}

TEST_F(RunReport, OfAFailedRunHasTheWordsAndTheCode) {
    makeSample("account");
    fs::remove(mainDatabase("account"));
    const Outcome run = exportFrom("account", "package", reported());
    ASSERT_EXIT_CODE(1, run);
    expectSaid({{"outcome", "failed"},
                {"exitCode", "1"},
                {"resultCode", "0xff00001f"},
                {"failure.what", "The database does not open"},
                {"failure.path", mainDatabase("account")},
                {"failure.reason", "there is no such file"}});
    EXPECT_NE("", said("failure.remedy"));
}

TEST_F(RunReport, OfAnImportThatBrokeOffCountsWhatWasWritten) {
    makePackage("account", "package");
    const Outcome run = importInto("copy", "package", reported(), {{}, 65536});
    ASSERT_EXIT_CODE(1, run);
    expectSaid({{"outcome", "failed"}, {"resultCode", "0xff00001f"}, {"summary.messages.read", "300"}});
    const std::string table = "select count(*) from sqlite_master where name like 'im_msg_%'";
    EXPECT_EQ(queryText(mainDatabase("copy"), table, 1), said("summary.conversations.new"));
    EXPECT_NE("300", said("summary.messages.written"));
}

TEST_F(RunReport, OfAnImportOfWhichTheDatabaseRefusesAPartIsIncomplete) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    runSql(mainDatabase("copy"),
           {"delete from " + biggestTable("copy"), "create trigger no_more before insert on " + biggestTable("copy") +
                                                       " begin select raise(abort, 'no'); end"});
    const Outcome run = importInto("copy", "package", reported());
    ASSERT_EXIT_CODE(1, run);
    EXPECT_EQ("incomplete", said("outcome"));
    EXPECT_EQ(rowOf(run.out, "Messages refused"), said("summary.messages.refused"));
    EXPECT_NE("0", said("summary.messages.refused"));
}

TEST_F(RunReport, OfAVerificationListsWhatDiffers) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    runSql(mainDatabase("copy"), {"delete from " + biggestTable("copy") + " where msgID in (select min(msgID) from " +
                                  biggestTable("copy") + ")"});
    ASSERT_EXIT_CODE(1, verify("package", "copy", {"--check", "imported", "--report", report()}));
    EXPECT_EQ("incomplete", said("outcome"));
    EXPECT_EQ(std::vector<std::string>{"messageNotInAccount"}, listed("findings", "kind"));
    EXPECT_NE(std::vector<std::string>{}, listed("changedByRule", "kind"));
}

TEST_F(RunReport, IsForItsOwnerOnly) {
    ASSERT_EXIT_CODE(0, sample("account", {"--report", report()}));
    EXPECT_EQ(0600U, permissionsOf(report()));
}

TEST_F(RunReport, ReplacesAnEarlierOne) {
    makeSample("account");
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", reported()));
    ASSERT_EXIT_CODE(1, exportFrom("account", "package", reported()));
    EXPECT_EQ("failed", said("outcome"));
}

TEST_F(RunReport, FillsAnEmptyFile) {
    dir_.write("report.json", "");
    ASSERT_EXIT_CODE(0, sample("account", reported()));
    EXPECT_EQ("done", said("outcome"));
}

TEST_F(RunReport, NeverReplacesAnythingElse) {
    makeSample("account");
    const std::string before = readFile(mainDatabase("account"));
    expectFailure(
        exportFrom("account", "package", {"--report", mainDatabase("account")}),
        {"The report cannot be written there; nothing was done.", "there is something that is no earlier report"});
    EXPECT_EQ(before, readFile(mainDatabase("account")));
    EXPECT_FALSE(hasPackage("package"));
}

TEST_F(RunReport, ThatCannotBeWrittenIsNoticedBeforeAnythingIsDone) {
    makeSample("account");
    expectFailure(exportFrom("account", "package", {"--report", at("missing/report.json")}),
                  {"give a file in a folder that exists"});
    EXPECT_FALSE(hasPackage("package"));
}

TEST_F(RunReport, UnderANameThatIsTooLongIsRefused) {
    expectFailure(sample("account", {"--report", at(std::string(300, 'a') + "/report.json")}), {"File name too long"});
    EXPECT_FALSE(exists(at("account")));
}

TEST_F(RunReport, OfADryRunThatFailsAtOnceSaysThatItWasOne) {
    ASSERT_EXIT_CODE(1, importInto("copy", "nowhere", {"--dry-run", "--report", report()}));
    EXPECT_EQ("true", said("dryRun"));
}

TEST_F(RunReport, LeavesNothingBesideItself) {
    makeSample("account");
    fs::create_directory(at("reports"));
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", {"--report", at("reports/one.json")}));
    ASSERT_EXIT_CODE(1, exportFrom("account", "package", {"--report", at("reports/one.json")}));
    EXPECT_EQ(1, std::distance(fs::directory_iterator(at("reports")), fs::directory_iterator()));
}

TEST_F(RunReport, HasNoRawControlCharacterOfForeignTexts) {
    makeAccount("account", {createTable("im_msg_7"),
                            "insert into im_msg_7(msgID, msgType, body, year_, mon, day_) values(1, 5, "
                            "'{\"mediaUrl\":\"/a/bb/cccc/dd/\\u001b[31m.jpg\",\"thumbUrl\":\"/a/bb/cccc/dd/t.jpg\"}', "
                            "2024, 3, 7)"});
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", reported()));
    EXPECT_FALSE(hasControlCharacter(readFile(report())));
    EXPECT_EQ("2", said("leftOut.count"));
}

TEST_F(RunReport, OfEveryCommandIsOffered) {
    for (const char* command : {"sample", "export", "import", "inspect", "verify", "view", "sample-tree",
                                "encrypt-tree", "import-tree", "decrypt-tree"}) {
        EXPECT_SAYS("--report FILE", chatTransfer({command, "--help"}).out);
    }
}

}  // namespace
}  // namespace test
