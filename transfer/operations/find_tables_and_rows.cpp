// Discovery of tables, and whether records are stored already.
#include "transfer/dbTrans.h"
#include "transfer/tables/existing_rows.h"
#include "transfer/tables/table_list.h"

void dbTrans::getTables() {
    getTables3(mainDb, tableNames);
}
void dbTrans::getTables2(imsdk::dbUtils& db) {
    getTables3(db, tableNames);
}
void dbTrans::getTables3(imsdk::dbUtils& db, std::vector<std::string>& names) {
    chattransfer::listTables(db, names, report);
}

std::string dbTrans::isTableExsit(long long targetID) {
    return chattransfer::findMessageTable(tableNames, targetID);
}

std::string dbTrans::isTableExsit(long long targetID, std::vector<std::string>& names) {
    // That the object's own list decides here is the behaviour that hosts know.
    if (tableNames.empty()) return {};
    return chattransfer::findMessageTable(names, targetID);
}

bool dbTrans::isTableExsit(char* name) {
    return name != nullptr && chattransfer::tableExists(pluginDb, name);
}

int dbTrans::isMsgExsit(std::string table, long long msgID) {
    return chattransfer::countMessages(mainDb, table, msgID);
}
int dbTrans::isMsgExsit(imsdk::dbUtils& db, std::string table, long long msgID) {
    return chattransfer::countMessages(db, table, msgID);
}

int dbTrans::isNoteExsit(st_noteTrans& note) {
    return chattransfer::countNotes(pluginDb, note);
}

int dbTrans::isRoomExsit(std::string& roomName, std::string& roomMember) {
    return chattransfer::countRooms(pluginDb, roomName, roomMember);
}
