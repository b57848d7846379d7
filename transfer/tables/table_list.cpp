#include "transfer/tables/table_list.h"

#include <algorithm>

#include "transfer/tables/message_table.h"

namespace chattransfer {

void listTables(imsdk::dbUtils& db, std::vector<std::string>& names, TransferReport& report) {
    names.clear();
    imsdk::dbDataReader reader = db.excuteQuery("select name from sqlite_master where type='table'");
    while (reader.read() != 0)
        names.push_back(reader.getColumnValue(0));
    if (!reader.failed()) return;
    names.clear();
    report.skip("the list of tables", Omission::tableListUnreadable, db.lastError());
}

bool hasTable(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

std::string findMessageTable(const std::vector<std::string>& names, long long targetID) {
    std::string name = messageTableName(targetID).text();
    return hasTable(names, name) ? name : std::string();
}

}  // namespace chattransfer
