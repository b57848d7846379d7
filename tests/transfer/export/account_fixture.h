// An account with real databases and files, a transfer object set up to export it, and verbs to look at the package.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "host/json/json_owner.h"
#include "tests/support/codes.h"
#include "tests/support/database.h"
#include "tests/support/listed.h"
#include "tests/support/listener.h"
#include "tests/support/records.h"
#include "tests/support/temp_dir.h"
#include "transfer/dbTrans.h"

namespace test {

// Written out once more on purpose: these tests hold the transfer against the columns that clients have.
inline constexpr const char* kMessageColumns =
    "(toUserID BIGINT, fromeUserID BIGINT, body VARCHAR(8000), msgType INTEGER, msgID BIGINT PRIMARY KEY, "
    "lastMsgID BIGINT, time_ BIGINT, burnAfterReading INTEGER, status INTEGER, targetID BIGINT, "
    "msgProperties VARCHAR(1024), year_ INTEGER, mon INTEGER, day_ INTEGER, limitRange VARCHAR(256), "
    "formate VARCHAR(256), activeType INTEGER, relatedMsgID BIGINT, localID BIGINT, relatedUsers VARCHAR(4096), "
    "sourceID VARCHAR(32), unReadState VARCHAR(128), securityLevel INTEGER)";
inline constexpr const char* kRecentContactColumns =
    "(targetID BIGINT PRIMARY KEY, lastMsgid BIGINT, time BIGINT, type TINYINT, top TINYINT, wherefrom VARCHAR(256), "
    "msgType TINYINT, activeType INTEGER, lastMsg VARCHAR(8000), msgProp VARCHAR(1024), name VARCHAR(128), "
    "sendUserID BIGINT, securityLevel INTEGER)";

/// `text` between `quote`s, those inside doubled: ' for a value, " for a name.
inline std::string quoted(const std::string& text, char quote) {
    std::string result(1, quote);
    for (const char c : text)
        result.append(c == quote ? 2 : 1, c);
    return result + quote;
}

inline imsdk::st_dbMessageBean messageOn(int year, int mon, int day, long long id = 1, int type = 0,
                                         const std::string& body = "text") {
    imsdk::st_dbMessageBean message;
    message.year_ = year;
    message.mon = mon;
    message.day_ = day;
    message.msgID = id;
    message.msgType = type;
    message.body = body;
    return message;
}

/// The JSON text of a value that the caller hands over.
inline std::string jsonText(JSON_Value* value) {
    const tools::JsonDocument document(value);
    char* text = json_serialize_to_string(document.get());
    std::string copy = text != nullptr ? text : "";
    json_free_serialized_string(text);
    return copy;
}

/// All files and folders below `folder`, folders with a "/" at their end, sorted, joined by blanks.
inline std::string treeOf(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        names.push_back(entry.path().lexically_relative(folder).string() + (entry.is_directory() ? "/" : ""));
    std::sort(names.begin(), names.end());
    return listed(names);
}

class AccountTest : public ::testing::Test {
protected:
    AccountTest() {
        transfer.rootPath = dir.at("account");
        transfer.backupPath = dir.at("backup");
        transfer.packageSubDir = "77";
        transfer.packageVersion = "1.0";
        transfer.progressListener = &listener;
    }

    // --- The account
    std::string mainPath() const { return dir.at("account/db/imsg.db"); }
    std::string backPath() const { return dir.at("account/db/backimsg.db"); }
    std::string pluginPath() const { return dir.at("account/db/plugin/kab.db"); }

    void runMain(const std::vector<std::string>& statements) {
        runSql(mainPath(), statements, transfer.dbKey.empty() ? nullptr : transfer.dbKey.c_str());
    }
    void addContactTable() { runMain({std::string("create table im_reContact") + kRecentContactColumns}); }
    void addBackDatabase() { runSql(backPath(), {}, transfer.dbKey.empty() ? nullptr : transfer.dbKey.c_str()); }
    void addTable(const std::string& name) { runMain({"create table " + quoted(name, '"') + kMessageColumns}); }

    /// A main database with the recent contacts' table and a back database, both else empty.
    void makeAccount() {
        addContactTable();
        addBackDatabase();
    }

    /// `count` rows like `message`, with ids from its own upward.
    void addMessages(const std::string& table, const imsdk::st_dbMessageBean& message, int count = 1) {
        const auto number = [](long long value) { return std::to_string(value) + ","; };
        const auto text = [](const std::string& value) { return quoted(value, '\'') + ","; };
        const imsdk::st_dbMessageBean& m = message;
        runMain({"insert into " + quoted(table, '"') +
                 " with recursive n(i) as (select 0 union all select i + 1 from n where i + 1 < " +
                 std::to_string(count) + ") select " + number(m.toUserID) + number(m.fromeUserID) + text(m.body) +
                 number(m.msgType) + std::to_string(m.msgID) + " + i," + number(m.lastMsgID) + number(m.time_) +
                 number(m.burnAfterReading) + number(m.status) + number(m.targetID) + text(m.msgProperties) +
                 number(m.year_) + number(m.mon) + number(m.day_) + text(m.limitRange) + text(m.formate) +
                 number(m.activeType) + number(m.relatedMsgID) + number(m.localID) + text(m.relatedUsers) +
                 text(m.sourceID) + text(m.unReadState) + std::to_string(m.securityLevel) + " from n"});
    }

    /// An attachment as it lies in the account, for example "image/pic.jpg".
    void addAttachment(const std::string& name, const std::string& bytes) { dir.write("account/" + name, bytes); }

    // --- What is selected
    /// Selects what is no older than a day, and gives the entries.
    std::string selected(int year = 2019, int mon = 1, int day = 1) {
        EXPECT_EQ(0U, transfer.rdMsgFromDB(year, mon, day));
        return entries();
    }
    std::string selectedUncapped(int year = 2019, int mon = 1, int day = 1) {
        EXPECT_EQ(0U, transfer.rdMsgFromDB2(year, mon, day));
        return entries();
    }
    /// The entries of dayMsgMap in their order: "<key>=<messages>", joined by blanks.
    std::string entries() const {
        return listed(transfer.dayMsgMap, " ",
                      [](const auto& day) { return day.first + "=" + std::to_string(day.second.size()); });
    }
    std::string idsOf(const std::string& key) const { return test::idsOf(transfer.dayMsgMap.at(key)); }
    /// Files `count` messages under a day key, with ids from `firstID` upward.
    void fillDay(const std::string& key, int count, long long firstID = 1) {
        for (int i = 0; i < count; ++i)
            transfer.dayMsgMap[key].push_back(messageOn(2019, 3, 7, firstID + i));
    }

    // --- The package
    std::string messageFolder() const { return dir.at("backup/qelmsg_0/messages_0/77/"); }
    std::string attachmentFolder() const { return dir.at("backup/qelmsg_0/qelimfiles_0/77/"); }
    std::string messageFile(int number) const {
        return readFile(messageFolder() + "msg_" + std::to_string(number) + ".mg");
    }
    /// Writes the package with one file a day, or with packed days, and gives what its message folder holds.
    std::string written() {
        EXPECT_EQ(0U, transfer.wtMsgToFile());
        return packageFiles();
    }
    std::string packed() {
        EXPECT_EQ(0U, transfer.wtMsgToFile2());
        return packageFiles();
    }
    /// The days of each message file and the names of other files, " | " between the files.
    std::string packageFiles() const {
        std::istringstream names(listing(messageFolder()));
        std::string text;
        int number = 0;
        for (std::string name; names >> name; text += (text.empty() ? "" : " | ") + name) {
            if (name == "msg_" + std::to_string(number) + ".mg") name = daysOf(number++);
        }
        return text;
    }
    std::string contactFile() const { return readFile(messageFolder() + "recontact.mg"); }

    /// The days of a message file: "<year>-<month>-<day>[<first id>..<last id>]", "[]" without messages, joined by
    /// blanks.
    std::string daysOf(int number) const {
        const tools::JsonDocument file(json_parse_string(messageFile(number).c_str()));
        const JSON_Array* days = json_object_get_array(json_value_get_object(file.get()), "msgs");
        std::string text;
        for (size_t i = 0; i < json_array_get_count(days); ++i)
            text += (text.empty() ? "" : " ") + dayText(json_array_get_object(days, i));
        return text;
    }

    std::string skipped() const {
        return listed(transfer.report.skipped, "\n",
                      [](const auto& entry) { return entry.what + ": " + entry.reason; });
    }

    TempDir dir;
    RecordingListener listener;
    dbTrans transfer;

private:
    static std::string dayText(const JSON_Object* day) {
        const JSON_Object* date = json_object_get_object(day, "date");
        const auto number = [date](const char* key) { return std::to_string(json_object_get_int64(date, key)); };
        const JSON_Array* messages = json_object_get_array(day, "msgs");
        const size_t count = json_array_get_count(messages);
        const auto id = [messages](size_t index) {
            return std::to_string(json_object_get_int64(json_array_get_object(messages, index), "messageID"));
        };
        return number("year") + "-" + number("month") + "-" + number("day") +
               (count == 0 ? "[]" : "[" + id(0) + ".." + id(count - 1) + "]");
    }
};

}  // namespace test
