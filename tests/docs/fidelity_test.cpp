// The tables of docs/fidelity.md against what an export and an import make of a row with a distinct value in each
// field.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tests/docs/markdown.h"
#include "tests/support/database.h"
#include "tests/support/listed.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"
#include "transfer/tables/message_table.h"
#include "transfer/tables/recent_contact_table.h"

namespace {

struct Fate {
    bool inPackage;
    std::string afterImport;  // "same", an SQL literal, or "no column"
};

std::vector<docs::Row> rowsUnder(const std::string& heading) {
    return docs::tableUnder(docs::readSource("docs/fidelity.md"), heading);
}

std::map<std::string, Fate> fatesUnder(const std::string& heading) {
    std::map<std::string, Fate> fates;
    for (const docs::Row& row : rowsUnder(heading))
        fates[docs::plain(row.at(0))] = {row.at(1) == "yes", docs::plain(row.at(2))};
    return fates;
}

std::vector<std::string> documentedFields(const std::string& heading) {
    std::vector<std::string> fields;
    for (const docs::Row& row : rowsUnder(heading))
        fields.push_back(docs::plain(row.at(0)));
    return fields;
}

// The members of a struct of transfer/records.h, in order: the last word of each line before " = 0;" or ";".
std::vector<std::string> declaredFields(const std::string& record) {
    const std::string header = docs::readSource("transfer/records.h");
    const std::size_t begin = header.find("struct " + record + " {");
    std::vector<std::string> fields;
    for (const std::string& line : docs::linesOf(header.substr(begin, header.find("\n};", begin) - begin))) {
        const std::string declaration = line.substr(0, std::min(line.find(" = 0;"), line.find(';')));
        if (declaration != line) fields.push_back(declaration.substr(declaration.rfind(' ') + 1));
    }
    return fields;
}

// A row that has a distinct value in every column.
struct SampleRow {
    std::map<std::string, std::string> literals;  // by column, as quote() gives them
    std::map<std::string, std::string> markers;   // what of the value can be found in a package file

    void add(int column, const std::string& name, const std::string& /*text*/) {
        const std::string value = "text " + std::to_string(610000000 + column);
        literals[name] = "'" + value + "'";
        markers[name] = value;
    }
    void add(int column, const std::string& name, long long /*number*/) {
        literals[name] = markers[name] = std::to_string(710000000 + column);
    }
    void add(int column, const std::string& name, int /*number*/) { add(column, name, 0LL); }
    void add(int column, const std::string& name, signed char /*number*/) {
        literals[name] = markers[name] = std::to_string(-100 - column);
    }
    void addList(const std::string& name, const std::string& first, const std::string& second) {
        literals[name] = "'" + first + ";" + second + "'";
        markers[name] = "[" + first + "," + second + "]";
    }

    std::string insertInto(const std::string& table) const {
        const std::string names = test::listed(literals, ",", [](const auto& one) { return one.first; });
        const std::string values = test::listed(literals, ",", [](const auto& one) { return one.second; });
        return "insert into " + table + "(" + names + ") values(" + values + ")";
    }
};

SampleRow sampleMessage() {
    SampleRow row;
    const imsdk::st_dbMessageBean any;
    chattransfer::forEachMessageColumn(
        any, [&row](int column, const char* name, auto /*use*/, const auto& field) { row.add(column, name, field); });
    row.add(21, "unReadState", std::string());
    row.addList("limitRange", "810000014", "810000015");
    row.addList("relatedUsers", "810000019", "810000020");
    return row;
}

SampleRow sampleContact() {
    SampleRow row;
    const imsdk::st_dbReContactBean any;
    chattransfer::forEachRecentContactField(
        any, [&row](int column, const char* name, const auto& field) { row.add(column, name, field); });
    row.add(11, "sendUserID", 0LL);
    return row;
}

class Fidelity : public testing::Test {
protected:
    void SetUp() override {
        table_ = "im_msg_" + message_.literals["targetID"];
        const std::string databases = docs::readSource("docs/databases.md");
        std::string createTable = docs::codeBlock(databases, "create message table");
        createTable.replace(createTable.find("%s"), 2, table_);
        test::runSql(home_.at("old/db/imsg.db"),
                     {createTable, docs::codeBlock(databases, "create recent-contact table"),
                      message_.insertInto(table_), contact_.insertInto("im_reContact")});
        test::runSql(home_.at("old/db/backimsg.db"), {});
        test::runSql(home_.at("new/db/imsg.db"), {});
        transferAll();
    }

    void prepare(dbTrans& transfer, const std::string& account) const {
        transfer.rootPath = home_.at(account);
        transfer.backupPath = home_.at("backup");
        transfer.packageSubDir = "1";
        transfer.packageVersion = "v";
    }

    void transferAll() {
        dbTrans exporter;
        prepare(exporter, "old");
        ASSERT_EQ(chattransfer::kSuccess, exporter.rdMsgFromDB(0, 1, 1));
        ASSERT_EQ(chattransfer::kSuccess, exporter.wtMsgToFile());
        dbTrans importer;
        prepare(importer, "new");
        ASSERT_EQ(chattransfer::kSuccess, importer.rdMsgFromFile());
        ASSERT_EQ(chattransfer::kSuccess, importer.wtMsgToDB());
        ASSERT_EQ(1U, importer.msgMap.size());
        received_ = importer.msgMap.begin()->second.front();
    }

    std::string packageFile(const std::string& name) const {
        return test::readFile(home_.at("backup/qelmsg_0/messages_0/1/" + name));
    }

    void expectFates(const std::map<std::string, Fate>& fates, SampleRow& sent, const std::string& table,
                     const std::string& file) const {
        const std::string package = packageFile(file);
        for (const auto& [field, fate] : fates) {
            if (fate.afterImport == "no column") continue;
            SCOPED_TRACE(field);
            EXPECT_EQ(fate.inPackage, package.find(sent.markers.at(field)) != std::string::npos);
            std::string query = "select quote(";
            query.append(field).append(") from ").append(table);
            const std::string expected = fate.afterImport == "same" ? sent.literals.at(field) : fate.afterImport;
            EXPECT_EQ(expected, test::queryText(home_.at("new/db/imsg.db"), query, 1));
        }
    }

    test::TempDir home_;
    SampleRow message_ = sampleMessage();
    SampleRow contact_ = sampleContact();
    std::string table_;
    imsdk::st_dbMessageBean received_;
};

// One stored contact, one of a package, and what the merge makes of them.
class ContactMerge : public testing::Test {
protected:
    void SetUp() override {
        test::runSql(home_.at("db/imsg.db"), {chattransfer::kCreateRecentContactTable});
        transfer_.rootPath = home_.path();
        ASSERT_NE(0, transfer_.dbOpen());
        transfer_.getTables();
    }

    std::string rowAfter(const std::string& time, const std::string& top, const imsdk::st_dbReContactBean& received) {
        transfer_.mainDb.excuteNonQuery("delete from im_reContact");
        std::string insert = "insert into im_reContact(targetID,time,top,name) values(7,";
        insert.append(time).append(",").append(top).append(",'stored')");
        EXPECT_NE(0, transfer_.mainDb.excuteNonQuery(insert.c_str()));
        transfer_.reContacts = {received};
        EXPECT_EQ(chattransfer::kSuccess, transfer_.wtRecontactToDb());
        return test::queryText(home_.at("db/imsg.db"), "select targetID,time,top,name from im_reContact", 4);
    }

    test::TempDir home_;
    dbTrans transfer_;
};

// The "top" that a cell such as "`top` 5, all else as it was" names; the stored one for "as it was".
std::string topAfter(const std::string& cell, const std::string& storedTop) {
    const std::string changed = "top ";
    const std::string text = docs::plain(cell);
    const std::size_t comma = text.find(", all else as it was");
    if (comma != std::string::npos) return text.substr(changed.size(), comma - changed.size());
    EXPECT_EQ("as it was", text);
    return storedTop;
}

}  // namespace

TEST(FidelityPage, NamesEveryFieldOfAMessageInOrder) {
    EXPECT_EQ(26U, declaredFields("st_dbMessageBean").size());
    EXPECT_EQ(declaredFields("st_dbMessageBean"), documentedFields("Messages"));
}

TEST(FidelityPage, NamesEveryFieldOfARecentContactInOrder) {
    EXPECT_EQ(13U, declaredFields("st_dbReContactBean").size());
    EXPECT_EQ(declaredFields("st_dbReContactBean"), documentedFields("Recent contacts"));
}

TEST(FidelityPage, NamesEveryColumnThatTheTransferTouches) {
    const std::map<std::string, Fate> messages = fatesUnder("Messages");
    for (const auto& [name, literal] : sampleMessage().literals)
        EXPECT_EQ(1U, messages.count(name)) << name;
    const std::map<std::string, Fate> contacts = fatesUnder("Recent contacts");
    for (const auto& [name, literal] : sampleContact().literals)
        EXPECT_EQ(1U, contacts.count(name)) << name;
}

TEST_F(Fidelity, OfEveryMessageFieldIsAsThePageSays) {
    expectFates(fatesUnder("Messages"), message_, table_, "msg_0.mg");
}

TEST_F(Fidelity, OfEveryRecentContactFieldIsAsThePageSays) {
    expectFates(fatesUnder("Recent contacts"), contact_, "im_reContact", "recontact.mg");
}

TEST_F(Fidelity, OfTheFieldsWithoutAColumnIsAsThePageSays) {
    const std::map<std::string, Fate> fates = fatesUnder("Messages");
    for (const char* field : {"extraText", "extraValue", "extraValue2"})
        EXPECT_EQ("no column", fates.at(field).afterImport) << field;
    EXPECT_EQ("", received_.extraText);
    EXPECT_EQ(0, received_.extraValue);
    EXPECT_EQ(-1, received_.extraValue2);
}

TEST_F(ContactMerge, KeepsTheStoredRowAsThePageSays) {
    int cases = 0;
    const std::string page = docs::readSource("docs/fidelity.md");
    const std::string merges = "# Merges\n" + page.substr(page.find("\nA contact that the account has already"));
    for (const docs::Row& row : docs::tableUnder(merges, "Merges")) {
        imsdk::st_dbReContactBean received;
        received.targetID = 7;
        received.name = "received";
        received.time = std::stoll(row.at(2));
        received.top = static_cast<signed char>(std::stoi(row.at(3)));
        const std::string expected = "7|" + row.at(0) + "|" + topAfter(row.at(4), row.at(1)) + "|stored";
        EXPECT_EQ(expected, rowAfter(row.at(0), row.at(1), received)) << row.at(4);
        ++cases;
    }
    EXPECT_EQ(7, cases);
}
