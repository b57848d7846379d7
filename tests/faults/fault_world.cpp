#include "tests/faults/fault_world.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <new>
#include <sstream>
#include <utility>

#include "host/CAES.h"
#include "host/files/temporary_name.h"
#include "host/json/json_owner.h"
#include "tests/support/database.h"
#include "tests/support/temp_dir.h"
#include "transfer/tables/recent_contact_table.h"

namespace fs = std::filesystem;

namespace test {
namespace {

constexpr const char* kUser = "1001";
constexpr const char* kTreeKey = "correct horse";

void write(const std::string& path, const std::string& bytes) {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string insertMessages(const std::string& table, int count, int day, int type, const std::string& body) {
    return "insert into " + table +
           "(toUserID, fromeUserID, body, msgType, msgID, time_, status, targetID, year_, mon, day_) with recursive "
           "n(i) "
           "as (select 1 union all select i + 1 from n where i < " +
           std::to_string(count) + ") select 1001, 2002, '" + body + "', " + std::to_string(type) + ", i, i, 4, " +
           table.substr(7) + ", 2024, 3, " + std::to_string(day) + " from n";
}

// Three conversations of one day each, so that a message file holds the whole batch of one.
void makeAccount(const std::string& path, const char* key) {
    const std::string body = R"({"mediaUrl":"2002/x","fileName":"note.txt"})";
    const std::string image = R"({"mediaUrl":"2002/a.jpg","thumbUrl":"2002/b.jpg"})";
    runSql(path + "/db/imsg.db",
           {createMessageTable("im_msg_11"), createMessageTable("im_msg_12"), createMessageTable("im_msg_13"),
            insertMessages("im_msg_11", 20, 1, 0, std::string(300, 'm')), insertMessages("im_msg_12", 3, 2, 6, body),
            insertMessages("im_msg_13", 1, 3, 5, image), chattransfer::kCreateRecentContactTable,
            "insert into im_reContact(targetID, name, time, top) values(11, 'one', 5, 0), (12, 'two', 6, 4)"},
           key);
    runSql(path + "/db/backimsg.db", {}, key);
    write(path + "/file/note.txt", "note");
    write(path + "/image/a.jpg", std::string(3000, 'a'));
    write(path + "/image/b.jpg", "b");
    fs::create_directories(path + "/audio");
}

void makeEmptyAccount(const std::string& path, const char* key) {
    for (const char* database : {"/db/imsg.db", "/db/backimsg.db", "/db/plugin/kab.db"})
        runSql(path + database, {}, key);
    for (const char* folder : {"/audio", "/file", "/image", "/video"})
        fs::create_directories(path + folder);
}

// An account that has one of the package's conversations in part, and one of its own.
void fillAccount(const std::string& path, const char* key) {
    runSql(
        path + "/db/imsg.db",
        {createMessageTable("im_msg_11"), createMessageTable("im_msg_99"), insertMessages("im_msg_11", 5, 1, 0, "mine"),
         insertMessages("im_msg_99", 2, 1, 0, "mine"), chattransfer::kCreateRecentContactTable,
         "insert into im_reContact(targetID, name, time, top) values(12, 'mine', 9, 0)"},
        key);
}

void encrypt(const std::string& path, const std::string& text) {
    fs::create_directories(fs::path(path).parent_path());
    write(path + ".plain", text);
    std::array<char, 256> error{};
    const std::string plain = path + ".plain";
    ASSERT_EQ(0, CAES().File_Aes_Go_Block(true, kTreeKey, plain.c_str(), path.c_str(), error.data())) << error.data();
    fs::remove(plain);
}

std::string treeMessage(int id, const std::string& more) {
    return R"({"messageID": )" + std::to_string(id) + R"(, "sendUserID": 2002, "receTargetID": 1001, "sendTime": )" +
           std::to_string(id) + more + "}";
}

void makeTree(const std::string& path) {
    const auto file = [](const std::string& key, const std::string& records) {
        return R"({"version": "1.0", ")" + key + R"(": [)" + records + "]}";
    };
    const auto messages = [&](const std::string& list) {
        return file("msgs", R"({"date": {"year": 2024, "month": 3, "day": 1}, "msgs": [)" + list + "]}");
    };
    const std::string root = path + "/qelbackup/" + kUser + "/";
    encrypt(root + "2002/a.mg", messages(treeMessage(1, "") + "," + treeMessage(2, R"(, "message": "two")")));
    encrypt(root + "3003/b.mg",
            messages(treeMessage(3, R"(, "messageType": 3, "message": "{\"mediaUrl\": \"v.amr\"}")")));
    encrypt(root + "c.ct", file("recontact", R"({"targetID": 2002, "name": "Ada", "time": 7})"));
    encrypt(root + "n.nt", file("note", R"({"targetID": 2002, "type": 1, "content": "milk"})"));
    encrypt(root + "r.rm", file("room", R"({"name": "Club", "targetID": [1, 2]})"));
    write(root + "imfiles/v.amr", "voice");
}

void set(dbTrans& transfer, const std::string& path) {
    transfer.rootPath = path + "/account";
    transfer.backupPath = path + "/backup";
    transfer.packageSubDir = kUser;
    transfer.packageVersion = "1.0";
    transfer.userAudioDir = path + "/account/audio/";
    transfer.userFileDir = path + "/account/file/";
    transfer.userImageDir = path + "/account/image/";
    transfer.userVideoDir = path + "/account/video/";
}

// Decrypts with the key of the tree, and imports with that of the databases.
void importTree(dbTrans& transfer, std::string& codes) {
    const auto note = [&codes](int code) { codes += std::to_string(static_cast<unsigned>(code)) + " "; };
    const std::string databaseKey = std::exchange(transfer.dbKey, kTreeKey);
    std::vector<std::string> files;
    for (const char* ending : {".ct", ".mg", ".nt", ".rm"})
        transfer.getfiles(transfer.backupPath + "/qelbackup/" + kUser + "/", files, ending);
    transfer.dbKey = databaseKey;
    note(transfer.rdAllFromFileNJ());
    note(transfer.wtAllToDBNJ());
}

void runCodes(Operation operation, dbTrans& transfer, std::string& codes) {
    const auto note = [&codes](unsigned code) {
        codes += std::to_string(code) + " ";
        return code == 0;
    };
    if (operation == Operation::importTree) {
        importTree(transfer, codes);
    } else if (operation == Operation::exportAll) {
        if (note(transfer.rdMsgFromDB(0, 0, 0))) note(transfer.wtMsgToFile());
    } else {
        if (note(transfer.rdMsgFromFile())) note(transfer.wtMsgToDB());
    }
}

const char* keyOf(const Scenario& scenario) {
    return scenario.key.empty() ? nullptr : scenario.key.c_str();
}

void addDatabase(State& state, const std::string& path, const std::string& name, const char* key) {
    EXPECT_EQ("ok", queryText(path, "PRAGMA integrity_check", 1, key)) << name;
    // SQLite's own table of the numbers that it gave out tells nothing of the user's.
    std::istringstream tables(queryText(
        path, "select name from sqlite_master where type = 'table' and name != 'sqlite_sequence' order by 1", 1, key));
    for (std::string table; std::getline(tables, table);) {
        const std::string count = queryText(path, "select count(*) from pragma_table_info('" + table + "')", 1, key);
        state[name + ":" + table] = queryText(path, "select * from " + table + " order by 1, 2", std::stoi(count), key);
    }
}

}  // namespace

std::string nameOf(const Scenario& scenario) {
    constexpr std::array<const char*, 4> kNames = {"Export", "ImportIntoAFreshAccount", "ImportIntoAnExistingAccount",
                                                   "TreeImport"};
    const std::string name = kNames.at(static_cast<std::size_t>(scenario.operation));
    return scenario.key.empty() ? name : name + "Keyed";
}

void makeWorld(const Scenario& scenario, const std::string& path) {
    const char* key = keyOf(scenario);
    if (scenario.operation == Operation::importTree) {
        makeEmptyAccount(path + "/account", key);
        makeTree(path + "/backup");
        return;
    }
    makeAccount(path + "/account", key);
    fs::create_directories(path + "/backup");
    if (scenario.operation == Operation::exportAll) return;
    ASSERT_TRUE(run({Operation::exportAll, scenario.key}, path).complete);
    fs::remove_all(path + "/account");
    makeEmptyAccount(path + "/account", key);
    if (scenario.operation == Operation::importExisting) fillAccount(path + "/account", key);
}

Ending run(const Scenario& scenario, const std::string& path, const Around& around) {
    dbTrans transfer;
    set(transfer, path);
    transfer.dbKey = scenario.key;
    std::string codes;
    codes.reserve(200);
    bool outOfMemory = false;
    around([&] {
        try {
            runCodes(scenario.operation, transfer, codes);
        } catch (const std::bad_alloc&) {
            outOfMemory = true;
        }
    });
    Ending ending;
    ending.complete =
        !outOfMemory && codes.find_first_of("123456789") == std::string::npos && transfer.report.skippedCount == 0;
    ending.words = "codes " + codes + (outOfMemory ? "out of memory" : "");
    for (const TransferReport::Skipped& skipped : transfer.report.skipped)
        ending.words += "\n" + skipped.what + ": " + skipped.reason;
    return ending;
}

void prepareAgain(Operation operation, const std::string& path) {
    // An export never writes into a package that is there: the host removes what a failed one left.
    if (operation == Operation::exportAll) fs::remove_all(path + "/backup/qelmsg_0");
}

State stateOf(const Scenario& scenario, const std::string& path) {
    State state;
    for (const char* name : {"db/imsg.db", "db/plugin/kab.db"}) {
        const std::string database = path + "/account/" + name;
        if (fs::exists(database)) addDatabase(state, database, name, keyOf(scenario));
    }
    for (const auto& entry : fs::recursive_directory_iterator(path)) {
        const std::string name = entry.path().lexically_relative(path).string();
        if (!entry.is_regular_file() || name.compare(0, 11, "account/db/") == 0) continue;
        if (!tools::isTemporaryName(entry.path().filename().string())) state[name] = readFile(entry.path().string());
    }
    return state;
}

std::string firstHalfDone(const State& before, const State& after, const State& now) {
    for (const auto& [name, content] : now) {
        const auto old = before.find(name);
        const auto final = after.find(name);
        if (old != before.end() && old->second == content) continue;
        if (final != after.end() && final->second == content) continue;
        const bool isFile = name.find(':') == std::string::npos;
        const bool isPackageFile = isFile && fs::path(name).extension() == ".mg";
        if (isPackageFile && tools::JsonDocument(json_parse_string(content.c_str()))) continue;
        // A table without its rows yet is none of its batch.
        if (!isFile && old == before.end() && content.empty()) continue;
        return name + " holds " + content.substr(0, 300);
    }
    for (const auto& [name, content] : before) {
        const bool stays = after.count(name) != 0;
        if (stays && now.count(name) == 0) return name + " is gone";
    }
    return "";
}

}  // namespace test
