// Out of one account and into another: what arrives, field by field and as a whole.
#include <cctype>
#include <map>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/listed.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"
#include "transfer/tables/recent_contact_table.h"

#include <gtest/gtest.h>

namespace test {
namespace {

// Column name and SQL literal.
using Row = std::vector<std::pair<std::string, std::string>>;

Row messageRow() {
    return {{"toUserID", "1"},   {"fromeUserID", "2"},    {"body", "'body'"},       {"msgType", "2"},
            {"msgID", "10"},     {"lastMsgID", "9"},      {"time_", "1000"},        {"burnAfterReading", "0"},
            {"status", "4"},     {"targetID", "5"},       {"msgProperties", "'p'"}, {"year_", "2019"},
            {"mon", "3"},        {"day_", "7"},           {"limitRange", "''"},     {"formate", "'f'"},
            {"activeType", "0"}, {"relatedMsgID", "0"},   {"localID", "0"},         {"relatedUsers", "''"},
            {"sourceID", "'s'"}, {"unReadState", "NULL"}, {"securityLevel", "NULL"}};
}

Row contactRow() {
    return {{"targetID", "5"},    {"lastMsgid", "10"},    {"time", "1000"},      {"type", "1"},      {"top", "0"},
            {"wherefrom", "'w'"}, {"msgType", "2"},       {"activeType", "0"},   {"lastMsg", "'l'"}, {"msgProp", "'p'"},
            {"name", "'n'"},      {"sendUserID", "NULL"}, {"securityLevel", "0"}};
}

std::string insertStatement(const std::string& table, const Row& row) {
    return "insert into " + table + " values(" + listed(row, ",", [](const auto& one) { return one.second; }) + ")";
}

// Two accounts and the package between them.
class TwoAccounts {
public:
    TwoAccounts() {
        for (const char* account : {"from", "to"}) {
            runSql(mainPath(account), {});
            runSql(dir.at(std::string(account) + "/db/backimsg.db"), {});
            for (const char* folder : {"audio", "file", "image"})
                dir.makeDir(std::string(account) + "/" + folder);
        }
        runSql(mainPath("from"), {chattransfer::kCreateRecentContactTable, createMessageTable("im_msg_5")});
        dir.makeDir("backup");
    }

    std::string mainPath(const std::string& account) const { return dir.at(account + "/db/imsg.db"); }
    std::string rows(const std::string& account, const std::string& sql, int columns = 1) const {
        return queryText(mainPath(account), sql, columns);
    }
    void store(const std::string& statement) const { runSql(mainPath("from"), {statement}); }

    void setUp(dbTrans& transfer, const std::string& account, const std::string& backup = "backup") const {
        transfer.rootPath = dir.at(account);
        transfer.backupPath = dir.at(backup);
        transfer.packageSubDir = "100";
        transfer.packageVersion = "1.0";
    }
    void exportFrom(const std::string& account, const std::string& backup = "backup") const {
        dbTrans transfer;
        setUp(transfer, account, backup);
        ASSERT_EQ(0U, transfer.rdMsgFromDB(2019, 1, 1));
        ASSERT_EQ(0U, transfer.wtMsgToFile());
    }
    void importTo(const std::string& account, const std::string& backup = "backup") const {
        dbTrans transfer;
        setUp(transfer, account, backup);
        ASSERT_EQ(0U, transfer.rdMsgFromFile());
        ASSERT_EQ(0U, transfer.wtMsgToDB());
    }

    TempDir dir;
};

// --- Field by field ---

// One line of the fidelity table, in SQL literals.
struct Fidelity {
    const char* name;
    const char* column;
    const char* stored;
    const char* arrives;
};

std::string nameOf(const testing::TestParamInfo<Fidelity>& info) {
    return info.param.name;
}

void PrintTo(const Fidelity& fidelity, std::ostream* out) {
    *out << fidelity.column << " = " << fidelity.stored;
}

void replaceIn(Row& row, const Fidelity& fidelity) {
    for (auto& [column, literal] : row) {
        if (column == fidelity.column) literal = fidelity.stored;
    }
}

class MessageFidelity : public testing::TestWithParam<Fidelity> {};

TEST_P(MessageFidelity, Holds) {
    const TwoAccounts accounts;
    Row row = messageRow();
    replaceIn(row, GetParam());
    accounts.store(insertStatement("im_msg_5", row));
    accounts.exportFrom("from");
    accounts.importTo("to");
    const std::string table =
        accounts.rows("to", "select name from sqlite_master where type = 'table' and name like 'im_msg_%'");
    EXPECT_EQ(GetParam().arrives,
              accounts.rows("to", std::string("select quote(") + GetParam().column + ") from " + table));
}

constexpr Fidelity kMessageFidelity[] = {
    {"ReceiverStays", "toUserID", "12", "12"},
    {"NegativeReceiverStays", "toUserID", "-3", "-3"},
    {"NullReceiverBecomesZero", "toUserID", "NULL", "0"},
    {"TextAsReceiverBecomesZero", "toUserID", "'abc'", "0"},
    {"SenderStaysUpTo2To53", "fromeUserID", "9007199254740992", "9007199254740992"},
    {"SenderAbove2To53LosesLowBits", "fromeUserID", "9007199254740993", "9007199254740992"},
    {"BodyStays", "body", "'h\xC3\xA9llo \xF0\x9F\x98\x80 \"q\" \\ /'", "'h\xC3\xA9llo \xF0\x9F\x98\x80 \"q\" \\ /'"},
    {"EmptyBodyStays", "body", "''", "''"},
    {"NullBodyBecomesEmpty", "body", "NULL", "''"},
    {"IllFormedByteInBodyBecomesReplacement", "body", "cast(x'61FF62' as text)",
     "'a\xEF\xBF\xBD"
     "b'"},
    {"BodyEndsAtItsFirstNul", "body", "cast(x'610062' as text)", "'a'"},
    {"TypeStays", "msgType", "-7", "-7"},
    {"TypeKeepsItsLow32Bits", "msgType", "4294967298", "2"},
    {"IdStaysUpTo2To53", "msgID", "9007199254740991", "9007199254740991"},
    {"IdAbove2To53LosesLowBits", "msgID", "9007199254740993", "9007199254740992"},
    {"GreatestIdStays", "msgID", "9223372036854775807", "9223372036854775807"},
    {"LeastIdStays", "msgID", "-9223372036854775808", "-9223372036854775808"},
    {"LastIdStays", "lastMsgID", "77", "77"},
    {"LastIdAbove2To53LosesLowBits", "lastMsgID", "9007199254740993", "9007199254740992"},
    {"TimeStays", "time_", "1551916800000", "1551916800000"},
    {"FractionOfTimeIsCut", "time_", "1000.9", "1000"},
    {"BurnFlagBecomesZero", "burnAfterReading", "1", "0"},
    {"StatusBecomes4", "status", "2", "4"},
    {"NullStatusBecomes4", "status", "NULL", "4"},
    {"ConversationStaysAndNamesTheTable", "targetID", "6", "6"},
    {"NullConversationBecomesZero", "targetID", "NULL", "0"},
    {"PropertiesStay", "msgProperties", "'{\"a\":1}'", "'{\"a\":1}'"},
    {"YearStays", "year_", "2024", "2024"},
    {"MonthStays", "mon", "12", "12"},
    {"DayStays", "day_", "31", "31"},
    {"LimitRangeBecomesEmpty", "limitRange", "'1;2;3'", "''"},
    {"FormatStays", "formate", "'bold'", "'bold'"},
    {"ActiveTypeStays", "activeType", "3", "3"},
    {"RelatedIdStays", "relatedMsgID", "55", "55"},
    {"RelatedIdAbove2To53LosesLowBits", "relatedMsgID", "9007199254740993", "9007199254740992"},
    {"LocalIdBecomesZero", "localID", "9", "0"},
    {"RelatedUsersBecomeEmpty", "relatedUsers", "'5;7;9'", "''"},
    {"SourceStays", "sourceID", "'device'", "'device'"},
    {"UnreadStateBecomesNull", "unReadState", "'unread'", "NULL"},
    {"SecurityLevelBecomesNull", "securityLevel", "3", "NULL"},
};

INSTANTIATE_TEST_SUITE_P(Messages, MessageFidelity, testing::ValuesIn(kMessageFidelity), nameOf);

class ContactFidelity : public testing::TestWithParam<Fidelity> {};

TEST_P(ContactFidelity, Holds) {
    const TwoAccounts accounts;
    Row row = contactRow();
    replaceIn(row, GetParam());
    accounts.store(insertStatement("im_reContact", row));
    accounts.exportFrom("from");
    accounts.importTo("to");
    EXPECT_EQ(GetParam().arrives,
              accounts.rows("to", std::string("select quote(") + GetParam().column + ") from im_reContact"));
}

constexpr Fidelity kContactFidelity[] = {
    {"ConversationStays", "targetID", "6", "6"},
    {"ConversationAbove2To53LosesLowBits", "targetID", "9007199254740993", "9007199254740992"},
    {"LastIdStays", "lastMsgid", "77", "77"},
    {"TimeStays", "time", "1551916800000", "1551916800000"},
    {"NullTimeBecomesZero", "time", "NULL", "0"},
    {"TypeStays", "type", "-4", "-4"},
    {"TypeKeepsItsLow8Bits", "type", "300", "44"},
    {"UnpinnedStays", "top", "0", "0"},
    {"TopOf1BecomesThePin", "top", "1", "4"},
    {"TopOf2Stays", "top", "2", "2"},
    {"PinStays", "top", "4", "4"},
    {"PinWithOtherBitsStays", "top", "5", "5"},
    {"TopKeepsItsLow8Bits", "top", "258", "2"},
    {"WherefromStays", "wherefrom", "'phone'", "'phone'"},
    {"MessageTypeStays", "msgType", "300", "300"},
    {"ActiveTypeStays", "activeType", "3", "3"},
    {"LastMessageStays", "lastMsg", "'\xE4\xBD\xA0\xE5\xA5\xBD'", "'\xE4\xBD\xA0\xE5\xA5\xBD'"},
    {"PropertiesStay", "msgProp", "'{}'", "'{}'"},
    {"NameStays", "name", "'O''Neil'", "'O''Neil'"},
    {"NullNameBecomesEmpty", "name", "NULL", "''"},
    {"IllFormedByteInNameBecomesReplacement", "name", "cast(x'C3' as text)", "'\xEF\xBF\xBD'"},
    {"SenderBecomesNull", "sendUserID", "77", "NULL"},
    {"SecurityLevelStays", "securityLevel", "9", "9"},
};

INSTANTIATE_TEST_SUITE_P(Contacts, ContactFidelity, testing::ValuesIn(kContactFidelity), nameOf);

template <std::size_t Count>
void expectEveryColumn(const Row& row, const Fidelity (&table)[Count]) {
    std::map<std::string, int> lines;
    for (const Fidelity& fidelity : table)
        ++lines[fidelity.column];
    for (const auto& [column, literal] : row)
        EXPECT_GT(lines[column], 0) << column;
    EXPECT_EQ(row.size(), lines.size());
}

TEST(FidelityTable, NamesEveryColumn) {
    expectEveryColumn(messageRow(), kMessageFidelity);
    expectEveryColumn(contactRow(), kContactFidelity);
}

// --- As a whole ---

constexpr long long kConversations[] = {5, 6, 1234567890123};

class RoundTrip : public testing::Test {
protected:
    // Several hundred messages over two years in each conversation, 300 of them on one day.
    RoundTrip() {
        accounts_.store(createMessageTable("im_msg_6"));
        accounts_.store(createMessageTable("im_msg_1234567890123"));
        for (const long long conversation : kConversations) {
            const std::string target = std::to_string(conversation);
            fill(target, 400, "2019 + x % 2, 1 + x % 12, 1 + x % 28");
            fill(target, 300, "2019, 3, 7", 1000);
        }
        accounts_.store("insert into im_reContact values(5,1,100,1,4,'w',2,0,'last','p','pinned',77,3)");
        accounts_.store("insert into im_reContact values(6,2,200,-2,1,'','3',4,'','','other',NULL,0)");
        writeAttachments();
    }

    void fill(const std::string& target, int count, const std::string& date, int firstId = 1) {
        accounts_.store("insert into im_msg_" + target +
                        " with recursive c(x) as (select 1 union all select x + 1 from c where x < " +
                        std::to_string(count) + ") select x, x + 1, 'message ' || x || char(128512), x % 3, x + " +
                        std::to_string(firstId) + ", x, x * 1000, x % 2, x % 5, " + target + ", 'p' || x, " + date +
                        ", '1;2', 'f', x % 7, x - 1, x, '3;4', 's' || x, 'u', x % 4 from c");
    }
    void storeMedia(long long id, int type, const std::string& body) {
        Row row = messageRow();
        row[2].second = "'" + body + "'";
        row[3].second = std::to_string(type);
        row[4].second = std::to_string(id);
        accounts_.store(insertStatement("im_msg_5", row));
    }
    void writeAttachments() {
        storeMedia(9001, 3, R"({"mediaUrl":"v/1","fileName":"voice.amr"})");
        storeMedia(9002, 5, R"({"mediaUrl":"i/pic.jpg","thumbUrl":"t/thumb.jpg"})");
        storeMedia(9003, 6, R"({"mediaUrl":"d/e/1","fileName":"doc.pdf"})");
        accounts_.dir.write("from/audio/voice.amr", std::string("voice\0bytes", 11));
        accounts_.dir.write("from/image/pic.jpg", "picture");
        accounts_.dir.write("from/image/thumb.jpg", "thumbnail");
        accounts_.dir.write("from/file/doc.pdf", std::string(100'000, 'd'));
    }

    // What the rows of a conversation become by the rules of the import.
    std::string expectedRows(const std::string& account, const std::string& table) const {
        return accounts_.rows(account,
                              "select toUserID, fromeUserID, body, msgType, msgID, lastMsgID, time_, 0, 4, targetID, "
                              "msgProperties, year_, mon, day_, '', formate, activeType, relatedMsgID, 0, '', "
                              "sourceID, '', '' from " +
                                  table + " order by msgID",
                              23);
    }
    std::string rows(const std::string& account, const std::string& table) const {
        return accounts_.rows(account, "select * from " + table + " order by msgID", 23);
    }
    std::string contacts(const std::string& account) const {
        return accounts_.rows(account, "select * from im_reContact order by targetID", 13);
    }
    void expectArrived(const std::string& account) const {
        for (const long long conversation : kConversations) {
            const std::string table = "im_msg_" + std::to_string(conversation);
            EXPECT_EQ(expectedRows("from", table), rows(account, table)) << table;
        }
        EXPECT_EQ("5|1|100|1|4|w|2|0|last|p|pinned||3\n6|2|200|-2|4||3|4|||other||0", contacts(account));
    }

    const TwoAccounts accounts_;
};

TEST_F(RoundTrip, BringsEveryRowByTheRules) {
    accounts_.exportFrom("from");
    accounts_.importTo("to");
    expectArrived("to");
    EXPECT_EQ("703", accounts_.rows("to", "select count(*) from im_msg_5"));
}

TEST_F(RoundTrip, BringsEveryAttachmentByteForByte) {
    accounts_.exportFrom("from");
    accounts_.importTo("to");
    for (const char* name : {"audio/voice.amr", "image/pic.jpg", "image/thumb.jpg", "file/doc.pdf"}) {
        EXPECT_EQ(readFile(accounts_.dir.at(std::string("from/") + name)),
                  readFile(accounts_.dir.at(std::string("to/") + name)));
    }
}

TEST_F(RoundTrip, DoublesNothingTheSecondTime) {
    accounts_.exportFrom("from");
    accounts_.importTo("to");
    accounts_.importTo("to");
    expectArrived("to");
    EXPECT_EQ("thumb.jpg", listing(accounts_.dir.at("to/image")).substr(8));
}

TEST_F(RoundTrip, ChangesNoMessageOfTheAccountItCameFrom) {
    const std::string before = rows("from", "im_msg_5");
    accounts_.exportFrom("from");
    accounts_.importTo("from");
    EXPECT_EQ(before, rows("from", "im_msg_5"));
}

TEST_F(RoundTrip, AddsOnlyThePinToTheContactsOfTheAccountItCameFrom) {
    accounts_.exportFrom("from");
    accounts_.importTo("from");
    // The top of 1 left as 1, was read as the pin 4, and joins the stored 1.
    EXPECT_EQ("5|1|100|1|4|w|2|0|last|p|pinned|77|3\n6|2|200|-2|5||3|4|||other||0", contacts("from"));
}

TEST_F(RoundTrip, FillsOnlyTheGapsOfAnAccount) {
    accounts_.exportFrom("from");
    const std::string before = rows("from", "im_msg_6");
    accounts_.store("delete from im_msg_5");
    accounts_.store("drop table im_msg_1234567890123");
    accounts_.importTo("from");
    EXPECT_EQ(before, rows("from", "im_msg_6"));
    EXPECT_EQ("703", accounts_.rows("from", "select count(*) from im_msg_5"));
    EXPECT_EQ("700", accounts_.rows("from", "select count(*) from im_msg_1234567890123"));
}

TEST_F(RoundTrip, LosesNothingMoreOnASecondJourney) {
    accounts_.exportFrom("from");
    accounts_.importTo("to");
    accounts_.dir.makeDir("backup2");
    accounts_.exportFrom("to", "backup2");
    runSql(accounts_.mainPath("third"), {});
    accounts_.importTo("third", "backup2");
    expectArrived("third");
}

TEST_F(RoundTrip, BringsTheSameIntoTheBackDatabaseWithoutContacts) {
    accounts_.exportFrom("from");
    dbTrans transfer;
    accounts_.setUp(transfer, "to");
    ASSERT_EQ(0U, transfer.rdMsgFromFile());
    ASSERT_EQ(0U, transfer.wtMsgToBackDB());
    EXPECT_EQ(expectedRows("from", "im_msg_5"),
              queryText(accounts_.dir.at("to/db/backimsg.db"), "select * from im_msg_5 order by msgID", 23));
    EXPECT_EQ("", accounts_.rows("to", "select name from sqlite_master"));
}

TEST_F(RoundTrip, BringsThePackedLayoutWithoutContacts) {
    // A later day of few messages keeps the last thousand inside the files.
    Row row = messageRow();
    row[4].second = "99999";
    row[11].second = "2999";
    accounts_.store(insertStatement("im_msg_5", row));
    dbTrans transfer;
    accounts_.setUp(transfer, "from");
    ASSERT_EQ(0U, transfer.rdMsgFromDB2(2019, 1, 1));
    ASSERT_EQ(0U, transfer.wtMsgToFile2());
    accounts_.importTo("to");
    for (const char* table : {"im_msg_5", "im_msg_6", "im_msg_1234567890123"})
        EXPECT_EQ(expectedRows("from", table), rows("to", table)) << table;
    EXPECT_EQ("", contacts("to"));
}

TEST_F(RoundTrip, BringsOnlyWhatIsRecentEnough) {
    dbTrans transfer;
    accounts_.setUp(transfer, "from");
    ASSERT_EQ(0U, transfer.rdMsgFromDB(2020, 6, 1));
    ASSERT_EQ(0U, transfer.wtMsgToFile());
    accounts_.importTo("to");
    const std::string count = "select count(*) from im_msg_6";
    EXPECT_EQ(accounts_.rows("from", count + " where year_ > 2019 and mon >= 6"), accounts_.rows("to", count));
    EXPECT_EQ("2020|6", accounts_.rows("to", "select min(year_), min(mon) from im_msg_6", 2));
}

TEST_F(RoundTrip, RefusesAPackageOfAnotherVersion) {
    accounts_.exportFrom("from");
    dbTrans transfer;
    accounts_.setUp(transfer, "to");
    transfer.packageVersion = "1.1";
    EXPECT_EQ(0xff000024U, transfer.rdMsgFromFile());
    EXPECT_TRUE(transfer.msgMap.empty());
    EXPECT_TRUE(transfer.reContacts.empty());
}

TEST_F(RoundTrip, WorksBetweenAccountsWithDifferentKeys) {
    runSql(accounts_.dir.at("keyed/db/imsg.db"), {}, "key");
    accounts_.exportFrom("from");
    dbTrans transfer;
    accounts_.setUp(transfer, "keyed");
    transfer.dbKey = "key";
    ASSERT_EQ(0U, transfer.rdMsgFromFile());
    ASSERT_EQ(0U, transfer.wtMsgToDB());
    EXPECT_EQ(expectedRows("from", "im_msg_5"),
              queryText(accounts_.dir.at("keyed/db/imsg.db"), "select * from im_msg_5 order by msgID", 23, "key"));
}

}  // namespace
}  // namespace test
