#include <sys/stat.h>

#include <filesystem>

#include "tests/app/fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class ImportCommand : public CommandTest {
protected:
    std::string rowsOf(const std::string& database) const {
        std::string names =
            queryText(database, "select name from sqlite_master where name like 'im%' order by name", 1);
        std::istringstream tables(names);
        std::string rows;
        for (std::string table; std::getline(tables, table);)
            rows += table + " " + queryText(database, "select count(*) from " + table, 1) + "\n";
        return rows;
    }
};

TEST_F(ImportCommand, BringsEverythingIntoAFreshAccount) {
    makePackage("account", "package");
    expectRows(expectSuccess(importInto("copy", "package")), {{"Messages read", "300"},
                                                              {"Messages inserted", "300"},
                                                              {"Conversations new", "4"},
                                                              {"Recent contacts inserted", "4"},
                                                              {"Attachments restored", "4"}});
    EXPECT_EQ(rowsOf(mainDatabase("account")), rowsOf(mainDatabase("copy")));
}

// The days and times of messages are data, whatever clock the machine shows.
TEST_F(ImportCommand, InAnotherTimeZoneThanTheExportBringsTheSameHistory) {
    makeSample("account");
    ASSERT_EXIT_CODE(0, exportFrom("account", "package", {}, {{"TZ=Pacific/Kiritimati"}}));
    ASSERT_EXIT_CODE(0, importInto("copy", "package", {}, {{"TZ=Pacific/Pago_Pago"}}));
    expectSuccess(verify("package", "copy"), {"Nothing is missing and nothing differs."});
    const std::string days = "select year_ || '-' || mon || '-' || day_ || ' ' || time_ from ";
    const std::string table = biggestTable("account");
    EXPECT_EQ(queryText(mainDatabase("account"), days + table + " order by msgID", 1),
              queryText(mainDatabase("copy"), days + table + " order by msgID", 1));
}

TEST_F(ImportCommand, SaysWhatItMakesForAFreshAccount) {
    makePackage("account", "package");
    const Outcome run = importInto("copy", "package");
    for (const char* name : {"db/imsg.db", "db/backimsg.db", "db/plugin/kab.db"}) {
        EXPECT_SAYS("Made a new database (not encrypted: no key was given): " + at(std::string("copy/") + name),
                    run.out);
        EXPECT_EQ(0600U, permissionsOf(at(std::string("copy/") + name)));
    }
    EXPECT_EQ(0700U, permissionsOf(at("copy")));
}

TEST_F(ImportCommand, AgainDoublesNothing) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    const std::string before = rowsOf(mainDatabase("copy"));
    const Outcome run = expectSuccess(importInto("copy", "package"));
    expectRows(run, {{"Messages inserted", "0"},
                     {"Messages there already", "300"},
                     {"Recent contacts inserted", "0"},
                     {"Attachments there already", "3"}});
    EXPECT_SAYS_NOT("Made a new", run.out);
    EXPECT_EQ(before, rowsOf(mainDatabase("copy")));
}

TEST_F(ImportCommand, IntoTheBackDatabaseBringsMessagesOnly) {
    makePackage("account", "package");
    EXPECT_EQ("300", rowOf(expectSuccess(importInto("copy", "package", {"--into", "back"})).out, "Messages inserted"));
    EXPECT_EQ("", rowsOf(mainDatabase("copy")));
    EXPECT_SAYS_NOT("im_reContact", rowsOf(at("copy/db/backimsg.db")));
    EXPECT_EXIT_CODE(0, verify("package", "copy", {"--database", "back", "--check", "imported"}));
}

TEST_F(ImportCommand, TakesThePackageFolderItself) {
    makePackage("account", "package");
    EXPECT_EXIT_CODE(0, importInto("one", "package/qelmsg_0"));
    EXPECT_EXIT_CODE(0, importInto("two", "package/qelmsg_0/"));
    expectSuccess(chatTransfer({"import", "--from", ".", "--account", at("three"), "--user", kUser},
                               {{}, 0, at("package/qelmsg_0")}));
}

TEST_F(ImportCommand, OfNothingFailsBeforeAnAccountIsMade) {
    expectFailure(importInto("copy", "nowhere"), {"There is no package", "0xff000022"});
    EXPECT_FALSE(exists(at("copy")));
}

TEST_F(ImportCommand, OfAnotherUserNamesThoseOfThePackage) {
    makePackage("account", "package");
    expectFailure(chatTransfer({"import", "--from", at("package"), "--account", at("copy"), "--user", "42"}),
                  {"nothing of user 42", std::string("this package holds: ") + kUser});
    EXPECT_FALSE(exists(at("copy")));
}

TEST_F(ImportCommand, OfAnotherVersionNamesBothBeforeAnAccountIsMade) {
    makePackage("account", "package");
    expectFailure(importInto("copy", "package", {"--package-version", "2.0"}),
                  {"0xff000024", "expects \"2.0\", the package says \"1.0\"", "--package-version"});
    EXPECT_FALSE(exists(at("copy")));
}

TEST_F(ImportCommand, OfAnotherVersionInALaterFileWritesNothingIntoTheDatabase) {
    makePackage("account", "package");
    putIntoPackage("msg_3.mg", R"({"version":"9","msgs":[]})");
    expectFailure(importInto("copy", "package"), {"0xff000024", "nothing was written to the database"});
    EXPECT_EQ("", rowsOf(mainDatabase("copy")));
}

TEST_F(ImportCommand, WithAWrongKeyLeavesNoAttachmentBehind) {
    makePackage("account", "package");
    const std::string key = dir_.write("key", "right");
    chmod(key.c_str(), 0600);
    ASSERT_EXIT_CODE(0, sample("target", {"--messages", "1", "--conversations", "1", "--key-file", key}));
    const std::string images = listing(at("target/image"));
    dir_.write("key", "wrong");
    EXPECT_EXIT_CODE(1, importInto("target", "package", {"--key-file", key}));
    EXPECT_EQ(images, listing(at("target/image")));
}

TEST_F(ImportCommand, WithADamagedFileBringsTheRestAndFails) {
    makePackage("account", "package");
    putIntoPackage("msg_1.mg", "{\"version\":");
    const Outcome run =
        expectFailure(importInto("copy", "package"), {"1 of the package's files could not be read", "msg_1.mg"});
    EXPECT_NE("0", rowOf(run.out, "Messages inserted"));
}

TEST_F(ImportCommand, FindsADamagedFileBehindAThousandMissingAttachments) {
    makeAccount(
        "account",
        {createTable("im_msg_5"),
         "insert into im_msg_5(msgID, targetID, msgType, body, year_, mon, day_) with recursive n(i) as (select 1 "
         "union "
         "all select i + 1 from n where i < 1100) select i, 5, 6, '{\"mediaUrl\":\"a/b\",\"fileName\":\"f' || i || "
         "'\"}', 2024, 6, 7 from n"});
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    fs::remove(messageFolder("package") + "recontact.mg");
    putIntoPackage("msg_5.mg", "no JSON");
    const Outcome run = expectFailure(importInto("copy", "package"),
                                      {"1 of the package's files could not be read", "... and 1,081 more"});
    EXPECT_EQ("1,100", rowOf(run.out, "Attachments missing"));
}

TEST_F(ImportCommand, WithAGapInTheNumberingFails) {
    makePackage("account", "package");
    fs::remove(messageFolder("package") + "msg_2.mg");
    expectFailure(importInto("copy", "package"), {"2 message files stand behind a gap"});
}

TEST_F(ImportCommand, WithoutAnAttachmentCountsItAsMissing) {
    makePackage("account", "package");
    fs::remove_all(attachmentFolder("package") + "voice");
    const Outcome run = expectSuccess(importInto("copy", "package"));
    EXPECT_EQ("1", rowOf(run.out, "Attachments missing"));
    EXPECT_SAYS("the attachment is missing", run.err);
}

TEST_F(ImportCommand, FailsWhenAnAttachmentCannotBeWritten) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    const std::string voice = listing(at("copy/audio"));
    fs::remove(at("copy/audio/" + voice));
    fs::create_directory(at("copy/audio/" + voice));
    const Outcome run = expectFailure(importInto("copy", "package"), {"1 attachments could not be copied"});
    EXPECT_EQ("1", rowOf(run.out, "Attachments failed"));
}

TEST_F(ImportCommand, OnAFullDiskFailsAndCanBeRepeated) {
    ASSERT_EXIT_CODE(0, sample("account", {"--messages", "3000", "--conversations", "10"}));
    ASSERT_EXIT_CODE(0, exportFrom("account", "package"));
    expectFailure(importInto("copy", "package", {}, {{}, 300000}), {"0xff00001f", "import again: nothing doubles"});
    EXPECT_EXIT_CODE(0, importInto("copy", "package"));
    EXPECT_EXIT_CODE(0, verify("package", "copy"));
}

TEST_F(ImportCommand, LeavesALinkToADatabaseThatIsAwayAlone) {
    makePackage("account", "package");
    fs::create_directories(at("copy/db"));
    fs::create_symlink(at("unplugged/imsg.db"), mainDatabase("copy"));
    for (const Arguments& more : {Arguments{}, Arguments{"--dry-run"}}) {
        expectFailure(importInto("copy", "package", more), {"there is no such file"});
        EXPECT_TRUE(fs::is_symlink(mainDatabase("copy")));
    }
}

TEST_F(ImportCommand, NeverChangesThePackage) {
    makePackage("account", "package");
    const std::string before = listing(messageFolder("package"));
    const auto written = fs::last_write_time(messageFolder("package"));
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    EXPECT_EQ(before, listing(messageFolder("package")));
    EXPECT_EQ(written, fs::last_write_time(messageFolder("package")));
    EXPECT_EQ("qelmsg_0", listing(at("package")));
}

}  // namespace
}  // namespace test
