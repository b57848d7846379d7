#include <filesystem>
#include <map>
#include <set>

#include "tests/app/fixture.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class SampleCommand : public CommandTest {
protected:
    std::string contentOf(const std::string& account) const {
        const std::string database = mainDatabase(account);
        std::string content = queryText(database, "select * from im_reContact order by targetID", 13);
        for (const std::string& table : tablesOf(account))
            content += table + "\n" + queryText(database, "select * from " + table + " order by msgID", 23) + "\n";
        return content;
    }

    std::map<std::string, std::string> attachmentsOf(const std::string& account) const {
        std::map<std::string, std::string> files;
        for (const char* folder : {"audio", "image", "file"}) {
            for (const fs::directory_entry& entry : fs::directory_iterator(at(account + "/" + folder)))
                files[std::string(folder) + "/" + entry.path().filename().string()] = readFile(entry.path());
        }
        return files;
    }

    std::string value(const std::string& account, const std::string& sql) const {
        return queryText(mainDatabase(account), sql, 1);
    }
};

TEST_F(SampleCommand, MakesThreeDatabasesThatOnlyTheirOwnerCanRead) {
    makeSample("account");
    for (const char* name : {"db/imsg.db", "db/backimsg.db", "db/plugin/kab.db"})
        EXPECT_EQ(0600U, permissionsOf(at(std::string("account/") + name))) << name;
    for (const char* name : {"", "/db", "/db/plugin", "/audio", "/image", "/file"})
        EXPECT_EQ(0700U, permissionsOf(at(std::string("account") + name))) << name;
}

TEST_F(SampleCommand, HoldsAsManyMessagesConversationsAndDaysAsAsked) {
    const Outcome run = sample("account", {"--conversations", "7", "--messages", "2500", "--days", "12"});
    ASSERT_EXIT_CODE(0, run);
    EXPECT_EQ("2,500", rowOf(run.out, "Messages"));
    ASSERT_EQ(7U, tablesOf("account").size());
    long long messages = 0;
    std::set<std::string> days;
    for (const std::string& table : tablesOf("account")) {
        const long long rows = std::stoll(value("account", "select count(*) from " + table));
        EXPECT_GE(rows, 1) << table;
        messages += rows;
        std::istringstream found(
            queryText(mainDatabase("account"), "select distinct year_, mon, day_ from " + table, 3));
        for (std::string day; std::getline(found, day);)
            days.insert(day);
    }
    EXPECT_EQ(2500, messages);
    EXPECT_EQ(12U, days.size());
}

TEST_F(SampleCommand, IsTheSameForTheSameSeed) {
    makeSample("one");
    makeSample("two");
    EXPECT_EQ(contentOf("one"), contentOf("two"));
    EXPECT_EQ(attachmentsOf("one"), attachmentsOf("two"));
}

TEST_F(SampleCommand, IsAnotherForAnotherSeed) {
    makeSample("one");
    ASSERT_EXIT_CODE(0, sample("two", {"--conversations", "4", "--messages", "300", "--days", "5", "--seed", "2"}));
    EXPECT_NE(contentOf("one"), contentOf("two"));
    EXPECT_NE(tablesOf("one"), tablesOf("two"));
}

TEST_F(SampleCommand, HasIdsOfSixteenDigitsThatAPackageHoldsExactly) {
    makeSample("account");
    for (const std::string& table : tablesOf("account")) {
        EXPECT_EQ(7U + 16U, table.size()) << table;
        const std::string outside =
            "select count(*) from " + table +
            " where msgID not between 1000000000000000 and 9007199254740992 or targetID not between "
            "1000000000000000 and 9007199254740992";
        EXPECT_EQ("0", value("account", outside)) << table;
    }
}

TEST_F(SampleCommand, HasVoiceImageAndFileMessagesWithRealFiles) {
    makeSample("account");
    const auto files = attachmentsOf("account");
    std::map<std::string, int> beginnings;
    for (const auto& [name, bytes] : files) {
        if (bytes.compare(0, 4, "RIFF") == 0) ++beginnings["wav"];
        if (bytes.compare(0, 4, "\x89PNG") == 0) ++beginnings["png"];
        if (name.compare(0, 5, "file/") == 0 && bytes.size() > 100) ++beginnings["file"];
    }
    EXPECT_EQ((std::map<std::string, int>{{"file", 1}, {"png", 2}, {"wav", 1}}), beginnings);
}

TEST_F(SampleCommand, NamesItsAttachmentsSoThatTheyTravel) {
    makePackage("account", "package");
    ASSERT_EXIT_CODE(0, importInto("copy", "package"));
    EXPECT_EQ(attachmentsOf("account"), attachmentsOf("copy"));
    EXPECT_EQ(4U, attachmentsOf("copy").size());
}

TEST_F(SampleCommand, SpeaksSeveralScriptsAndEmoji) {
    ASSERT_EXIT_CODE(0, sample("account", {"--conversations", "3", "--messages", "3000"}));
    std::string bodies;
    for (const std::string& table : tablesOf("account"))
        bodies += queryText(mainDatabase("account"), "select body from " + table, 1);
    for (const char* letters :
         {"Grüße", "Привет", "你好", "مرحبا", "שלום", "नमस्ते", "안녕", "😀", "👩‍👩‍👧‍👦"}) {
        EXPECT_NE(std::string::npos, bodies.find(letters)) << letters;
    }
}

TEST_F(SampleCommand, HasRepliesToMessagesThatAreThere) {
    makeSample("account");
    const std::string table = biggestTable("account");
    EXPECT_NE("0", value("account", "select count(*) from " + table + " where relatedMsgID <> 0"));
    EXPECT_EQ("0", value("account", "select count(*) from " + table +
                                        " where relatedMsgID <> 0 and relatedMsgID not in (select msgID from " + table +
                                        ")"));
}

TEST_F(SampleCommand, ListsEveryConversationAmongTheRecentContacts) {
    makeSample("account");
    for (const std::string& table : tablesOf("account")) {
        const std::string last = "select max(msgID) from " + table;
        const std::string listed = "select lastMsgid from im_reContact where targetID = " + table.substr(7);
        EXPECT_EQ(value("account", last), value("account", listed)) << table;
    }
    EXPECT_EQ("2", value("account", "select count(*) from im_reContact where top = 4"));
}

TEST_F(SampleCommand, NeverWritesIntoAnExistingAccount) {
    makeSample("account");
    const std::string before = contentOf("account");
    expectFailure(sample("account"), {"There is an account already"});
    EXPECT_EQ(before, contentOf("account"));
}

TEST_F(SampleCommand, MakesASingleMessage) {
    const Outcome run = sample("account", {"--conversations", "1", "--messages", "1", "--days", "1"});
    ASSERT_EXIT_CODE(0, run);
    EXPECT_EQ("1", value("account", "select count(*) from " + tablesOf("account").at(0)));
}

TEST_F(SampleCommand, LeavesConversationsEmptyWhenThereAreFewerMessages) {
    const Outcome run = sample("account", {"--conversations", "5", "--messages", "2"});
    ASSERT_EXIT_CODE(0, run);
    EXPECT_EQ(5U, tablesOf("account").size());
}

TEST_F(SampleCommand, FailsInWordsWhereItMayNotWrite) {
    dir_.write("file", "");
    expectFailure(sample("file/account"), {"A folder of the account cannot be made", "Not a directory"});
}

TEST_F(SampleCommand, FailsInWordsOnAFullDisk) {
    expectFailure(sample("account", {"--messages", "3000"}, {{}, 300000}),
                  {"The sample could not be written", "0xff00001f"});
}

}  // namespace
}  // namespace test
