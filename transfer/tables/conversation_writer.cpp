#include "transfer/tables/conversation_writer.h"

#include "host/base/fixed_text.h"
#include "transfer/tables/message_table.h"

namespace chattransfer {

std::string openMessageTable(TransferReport& report, imsdk::dbUtils& db, TableIndex& tables, long long targetID) {
    std::string name = tables.find(targetID);
    if (!name.empty()) return name;
    name = messageTableName(targetID).text();
    db.cacheSchemaOf(tables.size());
    const tools::FixedText<1024> create(  // room for the schema and any such name
        kCreateMessageTable, name.c_str());
    if (db.excuteNonQuery(create.text()) == 0) {
        report.skip(name, Omission::conversationTableNotCreated, db.lastError());
        return {};
    }
    tables.add(name);
    ++report.tablesCreated;
    return name;
}

std::string insertMessageStatement(const std::string& table) {
    // Hosts know this limit: a table whose name passes it takes no messages.
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
        report.skip("message " + std::to_string(record.msgID), Omission::messageRefused, db.lastError());
    }
    return stored;
}

ErrorCode writeConversation(TransferReport& report, imsdk::dbUtils& db, TableIndex& tables,
                            const Conversations::value_type& conversation) {
    const std::string table = openMessageTable(report, db, tables, conversation.first);
    if (table.empty()) return kDatabaseFailed;
    imsdk::dbCommand insert(&db, insertMessageStatement(table).c_str());
    for (const imsdk::st_dbMessageBean& message : conversation.second)
        static_cast<void>(insertMessage(report, db, insert, message));  // a refused one is in the report
    return kSuccess;
}

}  // namespace chattransfer
