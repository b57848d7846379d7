// Databases that somebody made to hurt the user, exported and imported into as a whole: nothing outside changes, an
// export leaves the database alone, and the harmless conversation is transferred.
#include <sqlite3.h>

#include <filesystem>
#include <random>

#include "tests/hostile/swapper.h"
#include "tests/support/seconds_of.h"
#include "tests/support/small_stack.h"
#include "tests/support/snapshot.h"
#include "tests/transfer/export/account_fixture.h"

namespace fs = std::filesystem;

namespace test {
namespace {

// Statements on a connection without any defence, as the attacker has one.
void runUndefended(const std::string& path, const std::vector<std::string>& statements) {
    sqlite3* db = nullptr;
    ASSERT_EQ(SQLITE_OK, sqlite3_open(path.c_str(), &db));
    for (const std::string& statement : statements)
        EXPECT_EQ(SQLITE_OK, sqlite3_exec(db, statement.c_str(), nullptr, nullptr, nullptr))
            << statement << ": " << sqlite3_errmsg(db);
    sqlite3_close(db);
}

class HostileDatabase : public AccountTest {
protected:
    HostileDatabase() {
        dir.write("private/secret.txt", "private bytes");
        makeAccount();
        addTable("im_msg_9009");
        imsdk::st_dbMessageBean harmless = messageOn(2019, 3, 7, 1, 0, "harmless");
        harmless.targetID = 9009;
        addMessages("im_msg_9009", harmless);
        dir.makeDir("backup");
    }

    void run(const std::vector<std::string>& statements) const { runUndefended(mainPath(), statements); }

    /// Puts `sql` into the schema as the definition of a table, without asking SQLite.
    void forgeTable(const std::string& name, const std::string& sql, const std::string& page = "0") const {
        run({"PRAGMA writable_schema = on", "insert into sqlite_master values('table', '" + name + "', '" + name +
                                                "', " + page + ", " + quoted(sql, '\'') + ")"});
    }

    std::string surroundings() const { return snapshotOf(dir.path(), {"account/db", "backup"}); }

    /// A whole export into a new package; true when both steps gave 0. Nothing outside the package changes, whatever it
    /// gives.
    bool exportAll() {
        fs::remove_all(dir.at("backup/qelmsg_0"));
        const std::string before = surroundings();
        const unsigned selected = transfer.rdMsgFromDB(0, 0, 0);
        const unsigned written = transfer.wtMsgToFile();
        EXPECT_EQ(before, surroundings());
        expectReadablePackage();
        return selected == 0 && written == 0;
    }

    void expectHarmlessExport() {
        const std::string database = readFile(mainPath());
        EXPECT_TRUE(exportAll()) << transfer.mainDb.lastError();
        EXPECT_TRUE(database == readFile(mainPath())) << "an export changed the database";
        EXPECT_NE(std::string::npos, package_.find(R"("message":"harmless")"));
    }

    /// Messages for a conversation, and what an import into the main database makes of them. The conversation 9009 gets
    /// a second message.
    unsigned import() {
        imsdk::st_dbMessageBean message = messageOn(2019, 3, 8, 2, 0, "imported");
        for (const long long conversation : {5LL, 9009LL}) {
            message.targetID = conversation;
            transfer.msgMap[conversation] = {message};
        }
        const std::string before = surroundings();
        const unsigned code = transfer.wtMsgToDB();
        EXPECT_EQ(before, surroundings());
        return code;
    }

    bool reported(const std::string& text) const { return skipped().find(text) != std::string::npos; }

    std::string package_;  ///< the bytes of all message files of the last export

private:
    void expectReadablePackage() {
        package_.clear();
        if (!exists(messageFolder())) return;
        for (const auto& entry : fs::directory_iterator(messageFolder())) {
            const std::string text = readFile(entry.path().string());
            EXPECT_NE(nullptr, tools::JsonDocument(json_parse_string(text.c_str()))) << entry.path();
            package_ += text;
        }
        EXPECT_EQ(std::string::npos, package_.find("private bytes"));
    }
};

// --- What stands under the names of tables ---

TEST_F(HostileDatabase, WithViewsUnderTheNamesOfConversationsExportsNoneOfThem) {
    run({"create view im_msg_5 as select * from im_msg_9009", "create view im_msg_6 as select * from im_msg_6",
         "create view im_msg_7 as with recursive n(i) as (select 1 union all select i from n) select i from n"});
    expectHarmlessExport();
    EXPECT_EQ(1, transfer.report.messagesSelected);
}

TEST_F(HostileDatabase, WithAViewInPlaceOfTheContactsSaysThatThereAreNone) {
    run({"drop table im_reContact",
         "create view im_reContact as with recursive n(i) as (select 1 union all select i from n) select i from n"});
    EXPECT_EQ(chattransfer::kNoTables, transfer.rdMsgFromDB(0, 0, 0));
}

TEST_F(HostileDatabase, WithVirtualTablesThatReadFilesExportsNoFile) {
    const std::string secret = dir.at("private/secret.txt");
    forgeTable("im_msg_5", "create virtual table im_msg_5 using csv(filename='" + secret + "')");
    forgeTable("im_msg_6", "create virtual table im_msg_6 using fsdir('" + dir.at("private") + "')");
    forgeTable("im_msg_7", "create virtual table im_msg_7 using zipfile('" + secret + "')");
    forgeTable("im_msg_8", "create virtual table im_msg_8 using unknown()");
    expectHarmlessExport();
    EXPECT_EQ(1, transfer.report.messagesSelected);
    EXPECT_TRUE(reported("im_msg_5"));
}

TEST_F(HostileDatabase, WithConversationsThatShareThePagesOfTheSchemaExportsTheRest) {
    forgeTable("im_msg_5", std::string("create table im_msg_5") + kMessageColumns, "1");
    forgeTable("im_msg_6", std::string("create table im_msg_6") + kMessageColumns, "999999");
    EXPECT_NO_FATAL_FAILURE(exportAll());
}

TEST_F(HostileDatabase, WithNamesThatAreStatementsRunsNone) {
    for (const char* name : {"im_msg_5; drop table im_msg_9009", "im_msg_5 union select * from im_reContact",
                             "im_msg_5--", "im_msg_5'", "im_msg_5\"", "im_msg_5`", "im_msg_[5]", "im_msg_5/*",
                             "im_msg_\n5", "im_msg_%s%n", "im_msg_5)(", "IM_MSG_9"}) {
        addTable(name);
    }
    expectHarmlessExport();
    EXPECT_EQ(1, transfer.report.messagesSelected);
}

// --- What stands in tables ---

TEST_F(HostileDatabase, WithMissingReorderedAndSurplusColumnsExportsTheRest) {
    run({"create table im_msg_1(year_, mon, day_)", "insert into im_msg_1 values(2020, 1, 1)",
         "create table im_msg_2(day_, mon, year_, body, msgID, toUserID)",
         "insert into im_msg_2 values(1, 1, 2020, 'b', 'text', x'00ff')",
         std::string("create table im_msg_3") + kMessageColumns, "alter table im_msg_3 add column more",
         "insert into im_msg_3(year_, more) values(2020, zeroblob(100000))", "create table im_msg_4(year_)",
         "create table im_msg_5(x)", "create table im_msg_6(year_, mon, day_, year2 as (year_ + mon) stored)",
         "insert into im_msg_6 values(2020, 1, 1)", "drop table im_reContact", "create table im_reContact(time)",
         "insert into im_reContact values(x'ff')"});
    expectHarmlessExport();
}

TEST_F(HostileDatabase, WithValuesOfOtherTypesExportsThemAsWhatTheyRead) {
    std::string columns = "2020,1,1";
    for (const char* value : {"null", "x'c328ff00'", "'12 apples'", "9e999", "-9e999", "9223372036854775807", "0.1",
                              "zeroblob(1000)", "char(0) || 'behind'", "char(27) || '[2J'", "'\xed\xa0\x80'"}) {
        std::string all = value;
        for (int i = 1; i < 23; ++i)
            all += std::string(",") + (i == 11 ? "2020" : value);
        run({"create table if not exists im_msg_5" + std::string(kMessageColumns),
             "insert or ignore into im_msg_5 values(" + all + ")",
             "insert or ignore into im_reContact values(" + std::string(value) + "," + value + "," + value + "," +
                 value + "," + value + "," + value + "," + value + "," + value + "," + value + "," + value + "," +
                 value + "," + value + "," + value + ")"});
    }
    expectHarmlessExport();
    EXPECT_GT(transfer.report.messagesSelected, 5);
}

TEST_F(HostileDatabase, WithABodyOfManyMegabytesExportsItWhole) {
    run({"insert into im_msg_9009(msgID, year_, body) values(2, 2020, printf('%.*c', 33554432, 'x') || 'end')"});
    expectHarmlessExport();
    EXPECT_NE(std::string::npos, package_.find("xxxxend\""));
}

// More than a row may have: its table is read up to it.
TEST_F(HostileDatabase, WithABodyOfAGigabyteSaysSoAndExportsTheRest) {
    run({"create table im_msg_5" + std::string(kMessageColumns),
         "insert into im_msg_5(msgID, year_, mon, day_, body) values(1, 2020, 1, 1, zeroblob(999999000))"});
    EXPECT_TRUE(exportAll()) << transfer.mainDb.lastError();
    EXPECT_NE(std::string::npos, package_.find(R"("message":"harmless")"));
    EXPECT_EQ(1, transfer.report.messagesSelected);
    EXPECT_TRUE(reported("im_msg_5: the table could not be read whole: string or blob too big"));
}

TEST_F(HostileDatabase, OfAFewBytesDoesNotGrowIntoGigabytes) {
    const std::string body = "printf('%.*c', 200000000, 'x')";
    run({"create table im_msg_5(year_, mon, day_, body as (" + body + "), b2 as (body || 'y'), b3 as (body || 'z'))",
         "insert into im_msg_5(year_) values(2020), (2021), (2022)"});
    EXPECT_LT(secondsOf([this] { expectHarmlessExport(); }), 10);
    EXPECT_TRUE(reported("im_msg_5: the table could not be read whole: string or blob too big"));
}

TEST_F(HostileDatabase, WithDeepExpressionsInItsSchemaDoesNotExhaustASmallStack) {
    if (!smallStackIsMeaningful()) GTEST_SKIP() << "frames of instrumented or unoptimised code are larger";
    constexpr int kLevels = 900;
    std::string expression = std::string(kLevels, '(') + "year_";
    for (int i = 0; i < kLevels; ++i)
        expression += "+1)";
    forgeTable("im_msg_5", "create table im_msg_5(year_, mon, day_, x as (" + expression + "))", "2");
    onSmallStack([this] { EXPECT_FALSE(exportAll()); });
    EXPECT_NE(std::string::npos, transfer.mainDb.lastError().find("Expression tree is too large"));
}

// Dates that any sum of year, month and day takes for the same.
TEST_F(HostileDatabase, WithDatesThatAreMadeToCollideIsSelectedInSeconds) {
    constexpr int kDates = 100000;
    addTable("im_msg_5");
    addMessages("im_msg_5", messageOn(2020, 1, 1), kDates);
    run({"update im_msg_5 set year_ = msgID, mon = -16 * msgID, day_ = 0"});
    EXPECT_LT(secondsOf([this] { EXPECT_EQ(0U, transfer.rdMsgFromDB(0, 0, 0)); }), 10);
    EXPECT_EQ(kDates + 1U, transfer.dayMsgMap.size());
}

// --- Damage ---

TEST_F(HostileDatabase, WithAnyPageDamagedNeverWritesABrokenPackage) {
    addMessages("im_msg_9009", messageOn(2019, 3, 9, 100, 0, std::string(900, 'x')), 60);
    run({"create index i on im_msg_9009(time_)", "VACUUM"});
    const std::string whole = readFile(mainPath());
    constexpr std::size_t kPage = 4096;
    ASSERT_GT(whole.size(), 10 * kPage);
    std::mt19937 random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same damage each time
    for (std::size_t page = 0; page < whole.size(); page += kPage) {
        for (const int kind : {0, 1, 2}) {
            std::string damaged = whole;
            for (std::size_t i = 0; i < kPage; ++i) {
                if (kind == 0) damaged[page + i] = '\0';
                if (kind == 1) damaged[page + i] = static_cast<char>(random());
                if (kind == 2 && i < 64) damaged[page + i] = static_cast<char>(random());
            }
            dir.write("account/db/imsg.db", damaged);
            ASSERT_NO_FATAL_FAILURE(exportAll()) << "page " << page / kPage << ", damage " << kind;
        }
    }
}

TEST_F(HostileDatabase, WithAnyByteChangedNeverCrashesAnExportOrAnImport) {
    const std::string whole = readFile(mainPath());
    std::mt19937 random(8);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same damage each time
    for (int round = 0; round < 150; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < 3; ++i)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        dir.write("account/db/imsg.db", damaged);
        ASSERT_NO_FATAL_FAILURE(exportAll()) << round;
        import();
    }
}

// --- Journals ---

// The end of a rollback journal that belongs to a commit over several databases: the name of the file that held this
// commit together. SQLite removes that file once it has rolled back.
std::string journalNaming(const std::string& file) {
    const auto number = [](unsigned value) {
        std::string bytes;
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(value >> shift & 0xFFU);
        return bytes;
    };
    unsigned sum = 0;
    for (const char c : file)
        sum += static_cast<unsigned>(c);
    return std::string(512, 'x') + number(1) + file + number(static_cast<unsigned>(file.size())) + number(sum) +
           "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
}

TEST_F(HostileDatabase, WithAJournalThatNamesAPrivateFileLeavesThatFile) {
    dir.write("account/db/imsg.db-journal", journalNaming(dir.at("private/secret.txt")));
    exportAll();
    EXPECT_EQ("private bytes", readFile(dir.at("private/secret.txt")));
}

TEST_F(HostileDatabase, WithAJournalOfACommitOverSeveralDatabasesIsOpenedAsUsual) {
    dir.write("account/db/imsg.db-journal", journalNaming(dir.at("account/db/imsg.db-mj0A1B2C9D3")));
    expectHarmlessExport();
}

TEST_F(HostileDatabase, WithGarbageForJournalsExportsWhatItHolds) {
    for (const char* journal : {"account/db/imsg.db-journal", "account/db/imsg.db-wal", "account/db/imsg.db-shm"})
        dir.write(journal, std::string(5000, 'j'));
    expectHarmlessExport();
}

TEST_F(HostileDatabase, WithALinkForItsJournalWritesNotThroughIt) {
    fs::create_symlink(dir.at("private/secret.txt"), dir.at("account/db/imsg.db-journal"));
    fs::create_symlink(dir.at("private/secret.txt"), dir.at("account/db/imsg.db-wal"));
    exportAll();
    import();
    EXPECT_EQ("private bytes", readFile(dir.at("private/secret.txt")));
}

// --- Triggers ---

TEST_F(HostileDatabase, WithATriggerThatRunsForEverLosesThatConversationInSeconds) {
    run({"create table sink(i)",
         "create trigger t after insert on im_msg_9009 begin insert into sink with recursive "
         "n(i) as (select 1 union all select i from n) select i from n where i < 0; end"});
    unsigned code = 0;
    EXPECT_LT(secondsOf([&] { code = import(); }), 60 * kSlowness);
    EXPECT_EQ(chattransfer::kDatabaseFailed, code);
    EXPECT_EQ("1", queryText(mainPath(), "select count(*) from im_msg_9009", 1));
    EXPECT_EQ("2", queryText(mainPath(), "select msgID from im_msg_5", 1));
}

TEST_F(HostileDatabase, WithTriggersThatReachOutsideChangesNothingThere) {
    run({"create trigger t1 after insert on im_msg_9009 begin select writefile('" + dir.at("private/secret.txt") +
             "', 'x'); end",
         "create trigger t2 after insert on im_msg_9009 begin select load_extension('" + dir.at("private/secret.txt") +
             "'); end",
         "create trigger t3 after insert on im_msg_9009 begin select sqlite3mc_config('cipher', 'rc4'); end"});
    import();
    EXPECT_EQ("2", queryText(mainPath(), "select msgID from im_msg_5", 1));
    EXPECT_EQ("ok", queryText(mainPath(), "PRAGMA integrity_check", 1));
}

// --- Attachments ---

TEST_F(HostileDatabase, WithMessagesThatNamePrivateFilesExportsNoneOfThem) {
    dir.makeDir("account/file");
    fs::create_directory_symlink(dir.at("private"), dir.at("account/file/folder"));
    fs::create_symlink(dir.at("private/secret.txt"), dir.at("account/file/link.txt"));
    long long id = 10;
    for (const char* name :
         {"../../private/secret.txt", "folder/secret.txt", "link.txt", "/private/secret.txt", ".."}) {
        for (const int type : {3, 5, 6}) {
            addMessages("im_msg_9009",
                        messageOn(2019, 3, 7, id++, type,
                                  std::string(R"({"mediaUrl":"../../../x/)") + name + R"(","thumbUrl":")" + name +
                                      R"(","fileName":")" + name + R"("})"));
            addMessages("im_msg_9009", messageOn(2019, 3, 7, id++, type,
                                                 std::string(R"({"mediaUrl":"a/b","thumbUrl":")") + name +
                                                     R"(","fileName":")" + name + R"("})"));
        }
    }
    EXPECT_TRUE(exportAll());
    EXPECT_EQ("", treeOf(attachmentFolder()));
}

TEST_F(HostileDatabase, IntoAFolderThatBecomesALinkOverwritesNoPrivateFile) {
    addAttachment("file/secret.txt", "hostile");
    addMessages("im_msg_9009", messageOn(2019, 3, 7, 10, 6, R"({"mediaUrl":"./x","fileName":"secret.txt"})"));
    Swapper swapper([this] {
        fs::remove_all(attachmentFolder());
        fs::create_directory_symlink(dir.at("private"), dir.at("backup/qelmsg_0/qelimfiles_0/77"));
    });
    transfer.progressListener = &swapper;
    EXPECT_TRUE(exportAll());
    EXPECT_EQ("private bytes", readFile(dir.at("private/secret.txt")));
    EXPECT_EQ(1, transfer.report.attachmentsRefused);
}

}  // namespace
}  // namespace test
