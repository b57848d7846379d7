// The transfer object's databases, and its reset.
#include "host/base/wipe.h"
#include "transfer/dbTrans.h"
#include "transfer/format/account_folders.h"
#include "transfer/tables/message_table.h"

namespace {

int openWith(imsdk::dbUtils& db, const std::string& path, const std::string& key) {
    return db.open(path.c_str(), key.empty() ? nullptr : key.c_str());
}

}  // namespace

dbTrans::~dbTrans() {
    tools::wipe(dbKey);
}

int dbTrans::countRows(int /*what*/, const char* /*condition*/, int /*flags*/) {
    return chattransfer::countTableRows(mainDb, trimTable);
}

int dbTrans::dbOpen() {
    return openWith(mainDb, rootPath + chattransfer::kMainDatabase, dbKey);
}
int dbTrans::backdbOpen() {
    return openWith(backDb, rootPath + chattransfer::kBackDatabase, dbKey);
}
int dbTrans::kabDbOpen() {
    return openWith(pluginDb, rootPath + chattransfer::kPluginDatabase, dbKey);
}

void dbTrans::dataClear() {
    dayMsgMap.clear();
    tableNames.clear();
}
