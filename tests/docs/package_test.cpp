// The worked example, the key tables and the packed layout of docs/formats/package.md against real exports.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "host/json/json_owner.h"
#include "tests/docs/markdown.h"
#include "tests/support/database.h"
#include "tests/support/listed.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"
#include "transfer/format/package_format.h"
#include "transfer/tables/recent_contact_table.h"

namespace {

namespace fs = std::filesystem;

const std::string kMessageFolder = "backup/qelmsg_0/messages_0/1001/";

// "insert ...;\ninsert ...;" as single statements.
std::vector<std::string> statementsOf(const std::string& block) {
    std::vector<std::string> statements;
    const std::string text = block + "\n";
    std::size_t begin = 0;
    for (std::size_t end = text.find(";\n"); end != std::string::npos; end = text.find(";\n", begin)) {
        statements.push_back(text.substr(begin, end + 1 - begin));
        begin = end + 2;
    }
    return statements;
}

std::string createTable(const std::string& format, const std::string& name) {
    std::string statement = format;
    return statement.replace(statement.find("%s"), 2, name);
}

class PackageExample : public testing::Test {
protected:
    void SetUp() override {
        prepare(transfer_);
        makeAccount("account");
    }

    void prepare(dbTrans& transfer) const {
        transfer.rootPath = home_.at("account");
        transfer.backupPath = home_.at("backup");
        transfer.packageSubDir = "1001";
        transfer.packageVersion = "1.0";
    }

    void makeAccount(const std::string& name) const {
        const std::string databases = docs::readSource("docs/databases.md");
        const std::string create = docs::codeBlock(databases, "create message table");
        std::vector<std::string> statements = {createTable(create, "im_msg_2002"), createTable(create, "im_msg_3003"),
                                               docs::codeBlock(databases, "create recent-contact table")};
        const std::vector<std::string> rows = statementsOf(docs::codeBlock(page_, "account rows"));
        statements.insert(statements.end(), rows.begin(), rows.end());
        test::runSql(home_.at(name + "/db/imsg.db"), statements);
        test::runSql(home_.at(name + "/db/backimsg.db"), {});
        home_.write(name + "/audio/note.amr", "voice");
        home_.write(name + "/image/photo.jpg", "picture");
    }

    void exportAccount() {
        ASSERT_EQ(chattransfer::kSuccess, transfer_.rdMsgFromDB(2019, 1, 1));
        ASSERT_EQ(chattransfer::kSuccess, transfer_.wtMsgToFile());
    }

    std::string exported(const std::string& file) const { return test::readFile(home_.at(kMessageFolder + file)); }
    std::string documented(const std::string& block) const { return docs::codeBlock(page_, block); }

    // Puts the documented files, and nothing else, into a package.
    void writeDocumentedPackage() const {
        for (const char* file : {"msg_0.mg", "msg_1.mg", "msg_2.mg", "recontact.mg"})
            home_.write(kMessageFolder + file, documented(file));
        home_.makeDir("backup/qelmsg_0/qelimfiles_0/1001");
    }

    test::TempDir home_;
    std::string page_ = docs::readSource("docs/formats/package.md");
    dbTrans transfer_;
};

std::string filesBelow(const std::string& folder) {
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) files.push_back(fs::relative(entry.path(), folder).string());
    }
    std::sort(files.begin(), files.end());
    return test::listed(files, "\n");
}

// "2500, 5" as numbers.
std::vector<int> numbersIn(const std::string& cell) {
    std::istringstream stream(cell);
    std::vector<int> numbers;
    for (std::string piece; std::getline(stream, piece, ',');)
        numbers.push_back(std::stoi(piece));
    return numbers;
}

int messagesInFile(const std::string& path) {
    const tools::JsonDocument file(json_parse_file(path.c_str()));
    const JSON_Array* days = json_object_get_array(json_value_get_object(file.get()), "msgs");
    int messages = 0;
    for (size_t day = 0; day < json_array_get_count(days); ++day) {
        const JSON_Array* list = json_object_get_array(json_array_get_object(days, day), "msgs");
        messages += static_cast<int>(json_array_get_count(list));
    }
    return messages;
}

class PackedLayout : public testing::Test {
protected:
    void fillDays(const std::vector<int>& counts) {
        for (std::size_t day = 0; day < counts.size(); ++day) {
            const auto count = static_cast<std::size_t>(counts[day]);
            transfer_.dayMsgMap["2019_1_" + std::to_string(day + 1)].resize(count);
            transfer_.report.messagesSelected += counts[day];
        }
    }

    std::vector<int> packedFiles() {
        transfer_.backupPath = home_.at("backup");
        transfer_.packageSubDir = "1001";
        EXPECT_EQ(chattransfer::kSuccess, transfer_.wtMsgToFile2());
        std::vector<int> messages(static_cast<std::size_t>(transfer_.getMsgFileNum(transfer_.msgFileDir)));
        for (std::size_t i = 0; i < messages.size(); ++i)
            messages[i] = messagesInFile(transfer_.msgFileDir + "msg_" + std::to_string(i) + ".mg");
        return messages;
    }

    test::TempDir home_;
    dbTrans transfer_;
};

const char* typeName(const std::string&) {
    return "string";
}
const char* typeName(long long) {
    return "number, 64 bits";
}
const char* typeName(int) {
    return "number, 32 bits";
}
const char* typeName(signed char) {
    return "number, -128 to 127";
}

using KeyAndType = std::pair<std::string, std::string>;

std::vector<KeyAndType> keysUnder(const std::string& page, const std::string& heading) {
    std::vector<KeyAndType> keys;
    for (const docs::Row& row : docs::tableUnder(page, heading))
        keys.emplace_back(docs::plain(row.at(1)), row.at(2));
    return keys;
}

// The page from the line on that introduces the table of message objects.
std::string messageObjectPart(const std::string& page) {
    const std::size_t start = page.find("\nA message object.");
    return "# Message object\n" + page.substr(std::min(start, page.size()));
}

}  // namespace

TEST_F(PackageExample, HasTheDocumentedMessageFilesByteForByte) {
    exportAccount();
    EXPECT_EQ(documented("msg_0.mg"), exported("msg_0.mg"));
    EXPECT_EQ(documented("msg_1.mg"), exported("msg_1.mg"));
    EXPECT_EQ(documented("msg_2.mg"), exported("msg_2.mg"));
}

TEST_F(PackageExample, HasTheDocumentedRecentContactFileByteForByte) {
    exportAccount();
    EXPECT_EQ(documented("recontact.mg"), exported("recontact.mg"));
}

TEST_F(PackageExample, ConsistsOfTheDocumentedFiles) {
    exportAccount();
    EXPECT_EQ(documented("files"), filesBelow(home_.at("backup")));
}

TEST_F(PackageExample, IsReadableByItsOwnerOnly) {
    exportAccount();
    EXPECT_EQ(0700U, test::permissionsOf(home_.at(kMessageFolder)));
    EXPECT_EQ(0600U, test::permissionsOf(home_.at(kMessageFolder + "msg_0.mg")));
    EXPECT_EQ(0600U, test::permissionsOf(home_.at("backup/qelmsg_0/qelimfiles_0/1001/2002/photo.jpg")));
}

TEST_F(PackageExample, IsLaidOutForReadingWithTheSameContent) {
    const tools::JsonDocument laidOut(json_parse_string(documented("msg_0.mg laid out").c_str()));
    char* compact = json_serialize_to_string(laidOut.get());
    ASSERT_NE(nullptr, compact);
    EXPECT_EQ(documented("msg_0.mg"), compact);
    json_free_serialized_string(compact);
}

TEST_F(PackageExample, IsImportedFromTheDocumentAlone) {
    writeDocumentedPackage();
    test::runSql(home_.at("other/db/imsg.db"), {});
    transfer_.rootPath = home_.at("other");
    ASSERT_EQ(chattransfer::kSuccess, transfer_.rdMsgFromFile());
    ASSERT_EQ(chattransfer::kSuccess, transfer_.wtMsgToDB());
    const std::string database = home_.at("other/db/imsg.db");
    EXPECT_EQ("51\n9007199254740992", test::queryText(database, "select msgID from im_msg_2002 order by msgID", 1));
    EXPECT_EQ("71\n72\n73", test::queryText(database, "select msgID from im_msg_3003 order by msgID", 1));
    EXPECT_EQ("2002|4\n3003|0", test::queryText(database, "select targetID, top from im_reContact", 2));
}

TEST(PackagePage, ListsTheKeysOfAMessageObjectInOrder) {
    std::vector<KeyAndType> written;
    const imsdk::st_dbMessageBean any;
    chattransfer::forEachMessageKey(any, [&written](const char* key, auto /*use*/, const auto& field) {
        written.emplace_back(key, typeName(field));
    });
    chattransfer::forEachMessageList(
        any, [&written](const char* key, const auto& /*field*/) { written.emplace_back(key, "array of numbers"); });
    const std::string page = messageObjectPart(docs::readSource("docs/formats/package.md"));
    EXPECT_EQ(written, keysUnder(page, "Message object"));
}

TEST(PackagePage, ListsTheKeysOfARecentContactInOrder) {
    std::vector<KeyAndType> written;
    const imsdk::st_dbReContactBean any;
    chattransfer::forEachRecentContactField(any, [&written](int /*column*/, const char* key, const auto& field) {
        written.emplace_back(key, typeName(field));
    });
    EXPECT_EQ(written, keysUnder(docs::readSource("docs/formats/package.md"), "Recent-contact file"));
}

TEST_F(PackedLayout, LeavesOutWhatThePageSays) {
    for (const docs::Row& row : docs::tableUnder(docs::readSource("docs/formats/package.md"), "Packed files")) {
        SCOPED_TRACE(row.at(0));
        std::filesystem::remove_all(home_.at("backup"));
        transfer_.dayMsgMap.clear();
        transfer_.report = TransferReport();
        fillDays(numbersIn(row.at(0)));
        EXPECT_EQ(numbersIn(row.at(1)), packedFiles());
        EXPECT_EQ(std::stoll(row.at(2)), transfer_.report.messagesSelected - transfer_.report.messagesWritten);
    }
}
