// The statements, columns, key scheme and settings of docs/databases.md against the code and real files.
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <string>

#include "tests/docs/markdown.h"
#include "tests/support/database.h"
#include "tests/support/listed.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

namespace {

std::string documented(const std::string& block) {
    return docs::codeBlock(docs::readSource("docs/databases.md"), block);
}

// Puts a table name, and a number, into a documented statement.
std::string filled(std::string statement, const std::string& table, const std::string& number = "") {
    for (std::size_t at = statement.find("%s"); at != std::string::npos; at = statement.find("%s"))
        statement.replace(at, 2, table);
    const std::size_t at = statement.find("%d");
    return at == std::string::npos ? statement : statement.replace(at, 2, number);
}

// "<position>|<column>|<type>" per line, as the page has it.
std::string documentedColumns(const std::string& heading) {
    return test::listed(docs::tableUnder(docs::readSource("docs/databases.md"), heading), "\n",
                        [](const auto& row) { return row.at(0) + "|" + docs::plain(row.at(1)) + "|" + row.at(2); });
}

std::string realColumns(const std::string& database, const std::string& table) {
    const std::string primaryKey = "case when pk then ' PRIMARY KEY' else '' end";
    return test::queryText(database,
                           "select cid, name, type || " + primaryKey + " from pragma_table_info('" + table + "')", 3);
}

std::string setting(const std::string& name) {
    for (const docs::Row& row : docs::tableUnder(docs::readSource("docs/databases.md"), "Connection settings")) {
        if (docs::plain(row.at(0)) == name) return row.at(1);
    }
    return "no setting " + name;
}

using Bytes = std::basic_string<unsigned char>;

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

Bytes derived(const Bytes& secret, const Bytes& salt, int rounds) {
    Bytes key(32, 0);
    PKCS5_PBKDF2_HMAC(reinterpret_cast<const char*>(secret.data()), static_cast<int>(secret.size()), salt.data(),
                      static_cast<int>(salt.size()), rounds, EVP_sha512(), static_cast<int>(key.size()), key.data());
    return key;
}

// The HMAC that page 1 of a file must end in, by the documented scheme.
Bytes expectedHmac(const Bytes& file, const std::string& keyText) {
    const Bytes salt = file.substr(0, 16);
    Bytes hmacSalt = salt;
    for (unsigned char& byte : hmacSalt)
        byte = static_cast<unsigned char>(byte ^ 0x3aU);
    const Bytes hmacKey = derived(derived(bytesOf(keyText), salt, 256000), hmacSalt, 2);
    const Bytes pageNumber = {1, 0, 0, 0};
    const Bytes covered = file.substr(16, 4096 - 64 - 16) + pageNumber;
    Bytes hmac(64, 0);
    HMAC(EVP_sha512(), hmacKey.data(), static_cast<int>(hmacKey.size()), covered.data(), covered.size(), hmac.data(),
         nullptr);
    return hmac;
}

}  // namespace

TEST(DatabasesPage, HasTheStatementsOfTheMessageTable) {
    EXPECT_EQ(chattransfer::kCreateMessageTable, documented("create message table"));
    EXPECT_EQ(chattransfer::insertMessageFormat(), documented("insert message"));
}

TEST(DatabasesPage, HasTheStatementsOfTheRecentContacts) {
    EXPECT_EQ(chattransfer::kCreateRecentContactTable, documented("create recent-contact table"));
    EXPECT_EQ(chattransfer::kFindRecentContact, documented("find recent contact"));
    EXPECT_EQ(chattransfer::kInsertRecentContact, documented("insert recent contact"));
    EXPECT_EQ(chattransfer::kPinRecentContact, documented("pin recent contact"));
    EXPECT_EQ(chattransfer::kUpdateRecentContact, documented("update recent contact, rejected"));
}

TEST(DatabasesPage, ListsTheColumnsOfTheMessageTable) {
    const test::TempDir home;
    test::runSql(home.at("imsg.db"), {filled(documented("create message table"), "im_msg_1")});
    EXPECT_EQ(realColumns(home.at("imsg.db"), "im_msg_1"), documentedColumns("Message tables"));
}

TEST(DatabasesPage, ListsTheColumnsOfTheRecentContacts) {
    const test::TempDir home;
    test::runSql(home.at("imsg.db"), {documented("create recent-contact table")});
    EXPECT_EQ(realColumns(home.at("imsg.db"), "im_reContact"), documentedColumns("Recent contacts"));
}

TEST(DatabasesPage, SaysRightlyThatTheDatabaseRejectsTheUpdate) {
    const test::TempDir home;
    test::runSql(home.at("imsg.db"), {documented("create recent-contact table")});
    imsdk::dbUtils db;
    ASSERT_NE(0, db.open(home.at("imsg.db").c_str(), nullptr));
    EXPECT_EQ(0, db.excuteNonQuery(filled(documented("update recent contact, rejected"), "im_reContact").c_str()));
    EXPECT_NE(0, db.excuteNonQuery(filled(documented("pin recent contact"), "im_reContact").c_str()));
}

TEST(DatabasesPage, TrimsAsTheTransferDoes) {
    const test::TempDir home;
    const std::string rows =
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 5001) "
        "insert into im_msg_1(msgID, time_) select i, i from n";
    for (const char* account : {"/trimmed/db/imsg.db", "/by_hand/db/imsg.db"})
        test::runSql(home.path() + account, {filled(documented("create message table"), "im_msg_1"), rows});
    test::runSql(home.at("by_hand/db/imsg.db"), {filled(documented("trim"), "im_msg_1", "2001")});
    dbTrans transfer;
    transfer.rootPath = home.at("trimmed");
    transfer.trimTable = "im_msg_1";
    ASSERT_NE(0, transfer.dbOpen());
    transfer.checkMsgCount();
    const std::string left = "select count(*), min(time_) from im_msg_1";
    EXPECT_EQ("3000|2002", test::queryText(home.at("trimmed/db/imsg.db"), left, 2));
    EXPECT_EQ("3000|2002", test::queryText(home.at("by_hand/db/imsg.db"), left, 2));
}

TEST(DatabasesPage, DescribesTheKeySchemeSoThatAnotherProgramCanCheckAFile) {
    const test::TempDir home;
    test::runSql(home.at("imsg.db"), {documented("create recent-contact table")}, "the key text");
    const Bytes file = bytesOf(test::readFile(home.at("imsg.db")));
    ASSERT_LE(4096U, file.size());
    EXPECT_EQ(file.substr(4096 - 64, 64), expectedHmac(file, "the key text"));
    EXPECT_NE(file.substr(4096 - 64, 64), expectedHmac(file, "another text"));
}

// A file that is keyed by the page's statements is one that the transfer opens with its key.
TEST(DatabasesPage, ShowsHowAnotherShellOpensAKeyedFile) {
    const test::TempDir home;
    const std::string file = home.at("imsg.db");
    {
        imsdk::dbUtils shell;
        test::makeDatabase(shell, file);
        for (const std::string& statement : docs::linesOf(documented("open a keyed database"))) {
            imsdk::dbDataReader answer = shell.excuteQuery(statement.c_str());
            answer.read();
            EXPECT_FALSE(answer.failed()) << statement << ": " << shell.lastError();
        }
        EXPECT_NE(0, shell.excuteNonQuery(documented("create recent-contact table").c_str())) << shell.lastError();
    }
    imsdk::dbUtils db;
    EXPECT_NE(0, db.open(file.c_str(), "the key text"));
    EXPECT_EQ(0, db.open(file.c_str(), "another text"));
    EXPECT_EQ(0, db.open(file.c_str(), nullptr));
}

TEST(DatabasesPage, StatesTheSettingsOfAnOpenConnection) {
    const test::TempDir home;
    const std::string database = home.at("imsg.db");
    test::runSql(database, {});
    EXPECT_EQ("4 s", setting("busy wait"));
    EXPECT_EQ("4000", test::queryText(database, "pragma busy_timeout", 1));
    EXPECT_EQ("2 MB; 1 KiB more for each table while tables are created, up to 64 MiB", setting("cache_size"));
    EXPECT_EQ("-2000", test::queryText(database, "pragma cache_size", 1));
    EXPECT_EQ("on", setting("cell_size_check"));
    EXPECT_EQ("1", test::queryText(database, "pragma cell_size_check", 1));
    EXPECT_EQ("on", setting("defensive mode, untrusted schema"));
    EXPECT_EQ("0", test::queryText(database, "pragma trusted_schema", 1));
    EXPECT_EQ("2", test::queryText(database, "pragma synchronous", 1));  // FULL
}
