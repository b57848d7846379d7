// The transfer object itself: databases, reset, progress, discovery of tables and existence checks.
#include <algorithm>

#include "host/base/fixed_text.h"
#include "host/base/wipe.h"
#include "transfer/base/progress_report.h"
#include "transfer/dbTrans.h"
#include "transfer/tables/message_table.h"

namespace {

int openWith(imsdk::dbUtils& db, const std::string& path, const std::string& key) {
    return db.open(path.c_str(), key.empty() ? nullptr : key.c_str());
}

// Texts go into statements as they are: one with an apostrophe ends its literal early and would ask something else.
bool endsLiteral(const std::string& text) {
    return text.find('\'') != std::string::npos;
}

std::string findTable(const std::vector<std::string>& names, long long targetID) {
    const std::string candidate = chattransfer::messageTableName(targetID).text();
    const auto found = std::find(names.begin(), names.end(), candidate);
    return found != names.end() ? *found : std::string();
}

}  // namespace

dbTrans::~dbTrans() {
    tools::wipe(dbKey);
}

int dbTrans::countRows(int /*what*/, const char* /*condition*/, int /*flags*/) {
    return chattransfer::countTableRows(mainDb, trimTable);
}

int dbTrans::dbOpen() {
    return openWith(mainDb, rootPath + "/db/" + "imsg.db", dbKey);
}
int dbTrans::backdbOpen() {
    return openWith(backDb, rootPath + "/db/" + "backimsg.db", dbKey);
}
int dbTrans::kabDbOpen() {
    return openWith(pluginDb, rootPath + "/db/plugin/" + "kab.db", dbKey);
}

void dbTrans::dataClear() {
    dayMsgMap.clear();
    tableNames.clear();
}

void dbTrans::regExProgress(void (*receiver)(int, int, int)) {
    exProgress = receiver;
}
void dbTrans::regImProgress(void (*receiver)(int, int, int)) {
    imProgress = receiver;
}

void dbTrans::progress(int stage, int total, int done) {
    chattransfer::notifyShare(*this, stage, done, total);
}

void dbTrans::getTables() {
    getTables3(mainDb, tableNames);
}
void dbTrans::getTables2(imsdk::dbUtils& db) {
    getTables3(db, tableNames);
}

void dbTrans::getTables3(imsdk::dbUtils& db, std::vector<std::string>& names) {
    names.clear();
    imsdk::dbDataReader reader = db.excuteQuery("select name from sqlite_master where type='table'");
    while (reader.read() != 0)
        names.push_back(reader.getColumnValue(0));
    if (!reader.failed()) return;
    // A list of some tables would pass for the list of all, and the conversations behind it for none.
    names.clear();
    report.skip("the list of tables", "it could not be read whole: " + db.lastError());
}

std::string dbTrans::isTableExsit(long long targetID) {
    return findTable(tableNames, targetID);
}

std::string dbTrans::isTableExsit(long long targetID, std::vector<std::string>& names) {
    // That the object's own list decides here is the behaviour that hosts know.
    if (tableNames.empty()) return {};
    return findTable(names, targetID);
}

bool dbTrans::isTableExsit(char* name) {
    if (name == nullptr || endsLiteral(name)) return false;
    const tools::FixedText<256> query("select * from sqlite_master where type = 'table' and name = '%s'", name);
    return pluginDb.isExistTable(query.text()) != 0;
}

int dbTrans::isMsgExsit(std::string table, long long msgID) {
    return isMsgExsit(mainDb, std::move(table), msgID);
}

int dbTrans::isMsgExsit(imsdk::dbUtils& db, std::string table, long long msgID) {
    return chattransfer::countOf(
        db, tools::FixedText<100>("select count(*) as cnt from  %s  where msgID = %lld", table.c_str(), msgID));
}

int dbTrans::isNoteExsit(st_noteTrans& note) {
    const tools::FixedText<9126> query(
        "select count(*) as cnt from im_note where sendUserId = %lld and targetID = %lld and type = %d and isReminder "
        "= %d "
        "and rmdTime = %lld and isArchive = %d and lastChgTime = %lld",
        note.sendUserId, note.targetID, note.type, note.isReminder, note.rmdTime, note.isArchive, note.lastChgTime);
    return chattransfer::countOf(pluginDb, query);
}

int dbTrans::isRoomExsit(std::string& roomName, std::string& roomMember) {
    if (endsLiteral(roomName) || endsLiteral(roomMember)) return 0;
    const tools::FixedText<512> query("select count(*) as cnt from im_room where roomName = '%s' and roomMember = '%s'",
                                      roomName.c_str(), roomMember.c_str());
    return chattransfer::countOf(pluginDb, query);
}
