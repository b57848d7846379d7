// Writing messages into their conversation's table: finds or creates the table and inserts record by record.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/dbUtils.h"
#include "transfer/error_codes.h"
#include "transfer/records.h"
#include "transfer/tables/one_transaction.h"
#include "transfer/tables/table_index.h"
#include "transfer/transfer_report.h"

namespace chattransfer {

/// The conversation's table in `db`, created when it is missing and then added to `tables`. Empty when it cannot be
/// created.
[[nodiscard]] std::string openMessageTable(TransferReport& report, imsdk::dbUtils& db, TableIndex& tables,
                                           long long targetID);

/// The insert statement for a table; empty when it would pass 511 bytes.
[[nodiscard]] std::string insertMessageStatement(const std::string& table);

/// Inserts one record with a command of insertMessageStatement(), and counts the outcome. Non-zero when it was stored.
/// A message whose id the table has already is left out: the stored copy wins.
[[nodiscard]] int insertMessage(TransferReport& report, imsdk::dbUtils& db, imsdk::dbCommand& command,
                                const imsdk::st_dbMessageBean& record);

using Conversations = std::map<long long, std::vector<imsdk::st_dbMessageBean>>;

/// Writes one conversation, its table included. kSuccess or kDatabaseFailed.
[[nodiscard]] ErrorCode writeConversation(TransferReport& report, imsdk::dbUtils& db, TableIndex& tables,
                                          const Conversations::value_type& conversation);

/// Writes all conversations, each in one transaction, and calls beforeCommit() at the end of each. kSuccess, or
/// kDatabaseFailed at the first that is lost: those before it stay.
template <class BeforeCommit>
[[nodiscard]] ErrorCode writeConversations(TransferReport& report, imsdk::dbUtils& db,
                                           std::vector<std::string>& tableNames, const Conversations& conversations,
                                           BeforeCommit beforeCommit) {
    TableIndex tables(tableNames);
    for (const auto& conversation : conversations) {
        const std::string what = "conversation " + std::to_string(conversation.first);
        const ErrorCode result = inOneTransaction(report, db, what, [&] {
            const ErrorCode written = writeConversation(report, db, tables, conversation);
            if (written == kSuccess) beforeCommit();
            return written;
        });
        if (result != kSuccess) return result;
    }
    return kSuccess;
}

}  // namespace chattransfer
