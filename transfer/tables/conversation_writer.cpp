#include "transfer/tables/conversation_writer.h"

#include "host/base/fixed_text.h"
#include "transfer/tables/message_table.h"

namespace chattransfer {

std::string openMessageTable(dbTrans& transfer, imsdk::dbUtils& db, TableIndex& index, long long targetID) {
    std::string name = index.find(targetID);
    if (!name.empty()) return name;
    name = messageTableName(targetID).text();
    db.cacheSchemaOf(transfer.tableNames.size());
    const tools::FixedText<1024> create(kCreateMessageTable, name.c_str());
    if (db.excuteNonQuery(create.text()) == 0) {
        transfer.report.skip(name, "the conversation's table could not be created: " + db.lastError());
        return {};
    }
    index.add(name);
    transfer.tableNames.push_back(name);
    ++transfer.report.tablesCreated;
    return name;
}

std::string insertMessageStatement(const std::string& table) {
    return tools::FixedText<512>(insertMessageFormat().c_str(), table.c_str()).text();
}

int insertMessage(TransferReport& report, imsdk::dbUtils& db, imsdk::dbCommand& command,
                  const imsdk::st_dbMessageBean& record) {
    bindMessage(command, record);
    const int stored = db.excuteNonQuery(&command);
    if (stored != 0) {
        ++report.messagesInserted;
    } else if (db.lastFailureWasDuplicate()) {
        ++report.messagesDuplicate;
    } else {
        ++report.messagesRefused;
        report.skip("message " + std::to_string(record.msgID), "the database refused it: " + db.lastError());
    }
    return stored;
}

}  // namespace chattransfer
