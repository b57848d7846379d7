#include "transfer/tables/message_trimming.h"

#include "host/base/fixed_text.h"
#include "transfer/tables/message_table.h"

namespace chattransfer {

bool isOverfull(int messageCount) {
    return messageCount > kTrimAbove;
}

int trimMessages(imsdk::dbUtils& db, const std::string& table, int messageCount, TransferReport& report) {
    if (!isPlainTableName(table)) return 0;
    // Hosts know this limit: a table whose name passes it is not trimmed.
    const tools::FixedText<256> trim(
        "delete from %s where time_ in(select time_ from %s order by time_ ASC limit 0,%d)", table.c_str(),
        table.c_str(), messageCount - kKeptRows);
    const int trimmed = db.excuteNonQuery(trim.text());
    if (trimmed != 0) report.messagesTrimmed += db.changedRows();
    return trimmed;
}

void trimMessageTables(imsdk::dbUtils& db, const std::vector<std::string>& tables, TransferReport& report) {
    for (const std::string& table : tables) {
        if (!isMessageTable(table)) continue;
        const int count = countTableRows(db, table);
        // A table that cannot be cut keeps more rows than it should, and loses none.
        if (isOverfull(count)) static_cast<void>(trimMessages(db, table, count, report));
    }
}

}  // namespace chattransfer
